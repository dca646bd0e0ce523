#ifndef SESSION_LOG_H
#define SESSION_LOG_H

#include "observer/ProductTag.h"

#include <cstdio>

enum OS_LOGLEVEL : int
{
    OS_LOG_DEBUG = 0,
    OS_LOG_INFO = 1,
    OS_LOG_WARN = 2,
    OS_LOG_ERROR = 3
};

/** Starts logging: configuration file and directory logs/ are found beside the log library. 0 or -1. */
int LOG_INIT();

/** Stops logging; returns what the log library returns. */
int LOG_EXIT();

/** Writes a line of at most 512 characters to the run log. Any thread, at any time; never fails. */
void COMMLOG(OS_LOGLEVEL level, const char* format, ...) __attribute__((format(printf, 2, 3)));

/** The directory that a shared library of this process was loaded from; 0, or -1 and dir left as it was. */
int GetModuleFilePath(const char* moduleName, char* dir, unsigned int dirSize);

/** The directory of the log library; dir is left as it was when it is not found. */
void getCurrentPath(char* dir, unsigned int dirSize);

namespace ovra::tessel {

/** GetModuleFilePath out of an open listing in the format of /proc/self/maps. */
int findModuleDirectory(std::FILE* maps, const char* moduleName, char* dir, unsigned int dirSize);

} // namespace ovra::tessel

#endif
