#include "frame/CommandLine.h"

#include <csignal>

int main(int argc, char** argv)
{
    // A reader that goes away fails the write, and does not end the process with its session open. A handler,
    // since what is ignored would stay so for the host's tools.
    if (std::signal(SIGPIPE, [](int) {}) == SIG_IGN) {
        std::signal(SIGPIPE, SIG_IGN);
    }
    return tesselctl::run(argc, argv);
}
