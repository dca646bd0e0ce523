#ifndef OVRA_REST_SETTINGS_H
#define OVRA_REST_SETTINGS_H

#include <ovra/rest/RestSettings.h>

#include <string>
#include <vector>

namespace ovra::rest {

/** Settings as read from the environment, and what was wrong with it, a sentence each. */
struct EnvironmentSettings
{
    RestSettings settings;
    std::vector<std::string> problems;
};

/** @param lookUp gives the value of a variable, or null. */
EnvironmentSettings readEnvironment(const char* (*lookUp)(const char*));

/**
 * Logs, once in the process, that servers are not verified. Done when a request is sent, not when the
 * settings are made: logging may start after that.
 */
void warnAboutSettings(const RestSettings& settings);

} // namespace ovra::rest

#endif
