#include "Simulator.h"
#include "types/Common.h"

#include <iostream>
#include <thread>
#include <unistd.h>

using namespace arraysim;

namespace {

/** Turns the end of the standard input into a SIGTERM for this process. */
void stopWithStdin()
{
    std::thread([] {
        char byte;
        while (::read(STDIN_FILENO, &byte, 1) > 0) {
        }
        ::kill(::getpid(), SIGTERM);
    }).detach();
}

/** Serves until SIGTERM or SIGINT comes. */
void serve(const Options& options)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    const Simulator simulator(options);
    simulator.announce();
    if (options.stopOnStdinEof) {
        stopWithStdin();
    }
    int signal = 0;
    sigwait(&signals, &signal);
}

/** Serves until the command of the options has ended. */
CommandEnd serveCommand(const Options& options)
{
    const Command command;
    const Simulator simulator(options);
    return command.run(options.command, simulator.environment());
}

} // namespace

#ifdef __SANITIZE_THREAD__
/**
 * The HTTP library is not built with the sanitizer, which therefore sees what one thread writes into the
 * library's constants, and not that every other waits for it: what such libraries touch is not examined,
 * their locks are.
 */
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options()
{
    return "ignore_noninstrumented_modules=1";
}
#endif

int main(int argc, char** argv)
{
    Options options;
    int status = 0;
    if (!readOptions(argc, argv, options, status)) {
        return status;
    }
    setCompanyId(options.companyId);
    try {
        if (options.command.empty()) {
            serve(options);
        } else {
            Command::endLike(serveCommand(options));
        }
    } catch (const std::exception& failure) {
        std::cerr << "tessel-arraysim: " << failure.what() << "\n";
        return options.command.empty() ? 1 : Command::NO_ARRAY;
    }
    return 0;
}
