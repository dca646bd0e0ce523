#ifndef FRAME_COMMANDLINE_H
#define FRAME_COMMANDLINE_H

#include "kernel/Command.h"

namespace tesselctl {

/**
 * Reads the command line, runs the command that it names and tells how it ended; the exit code of the
 * process.
 */
int run(int argc, char** argv);

} // namespace tesselctl

#endif
