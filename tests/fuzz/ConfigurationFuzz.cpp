#include "FuzzTarget.h"

#include "Configuration.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text = textOf(data, size);
    const ovra::log::Configuration configuration = ovra::log::parseConfiguration(text);
    const int level = ovra::log::levelNumber(configuration.level);
    mustHold(level >= 0 && level <= 3, "the level is one of the four");
    mustHold(configuration.retentionDays >= 0 && configuration.retentionDays <= 36500,
             "days are in their range");
    mustHold(configuration.mostMibPerDay <= 1048576 && configuration.mostMib <= 1048576,
             "limits are in their range");
    mustHold(configuration.directory.empty() || (configuration.directory.front() == '/' &&
                                                 text.find(configuration.directory) != std::string::npos),
             "the directory is a whole path of the file");
    mustHold(configuration.problems.size() <= 2 * linesOf(text).size(), "a line has no more than two faults");
    return 0;
}
