#include "frame/CommandLine.h"

int main(int argc, char** argv)
{
    return tesselctl::run(argc, argv);
}
