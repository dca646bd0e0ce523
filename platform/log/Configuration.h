#ifndef OVRA_LOG_CONFIGURATION_H
#define OVRA_LOG_CONFIGURATION_H

#include <spdlog/common.h>

#include <string>
#include <vector>

namespace ovra::log {

/** What Tessel_API.ini can say. */
struct Configuration
{
    spdlog::level::level_enum level = spdlog::level::info; ///< of the run log
    int retentionDays = 30;                                ///< 0: files are kept for ever
    bool hasInterfaceLog = true;
    unsigned long mostMibPerDay = 0; ///< of all files of a day; 0: no limit
    unsigned long mostMib = 0;       ///< of all files; 0: no limit
    std::string directory;           ///< empty: the one handed to LogInit

    std::vector<std::string> problems; ///< what could not be used and what is done instead, a sentence each
};

/** Reads a configuration file; what is missing or cannot be used keeps its default. */
Configuration readConfiguration(const std::string& path);

/** The same from the file's text. */
Configuration parseConfiguration(const std::string& text);

/** Number of a run-log level as LogInit hands it out: 0 debug, 1 info, 2 warn, 3 error. */
int levelNumber(spdlog::level::level_enum level);

} // namespace ovra::log

#endif
