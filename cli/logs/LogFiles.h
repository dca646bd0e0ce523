#ifndef LOGS_LOGFILES_H
#define LOGS_LOGFILES_H

#include <map>
#include <string>
#include <vector>

namespace tesselctl {

/** Where this program's logs are; starts logging for it. Throws Failure when there is no place for them. */
std::string logDirectoryInUse();

/** The log files of a directory, by kind ("run", "interface", "audit"), the oldest first. */
std::map<std::string, std::vector<std::string>> logFilesIn(const std::string& directory);

} // namespace tesselctl

#endif
