#include "Settings.h"

#include "ConnectionPool.h"
#include "LibraryLock.h"

#include <ovra/log/LogAPI.h>
#include <ovra/threads/NoCancellation.h>

#include <atomic>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace ovra::rest {

namespace {

constexpr long LONGEST_SECONDS = 86400;

void readSeconds(const char* name, const char* text, long& seconds, std::vector<std::string>& problems)
{
    if (text == nullptr || *text == '\0') {
        return;
    }
    long number = 0;
    const char* const end = text + strlen(text);
    const auto [stop, error] = std::from_chars(text, end, number);
    if (error != std::errc() || stop != end || number < 1 || number > LONGEST_SECONDS) {
        problems.push_back(std::string(name) +
                           " is not a number of seconds from 1 to 86400, the default is used");
    } else {
        seconds = number;
    }
}

void readSwitch(const char* name, const char* text, bool& value, std::vector<std::string>& problems)
{
    if (text == nullptr || *text == '\0') {
        return;
    }
    const std::string given = text;
    if (given != "0" && given != "1") {
        problems.push_back(std::string(name) + " is neither 0 nor 1, 0 is used");
    }
    value = given == "1";
}

/// What the environment says, read when it is first asked for, and what is in force.
struct Current
{
    EnvironmentSettings environment =
        readEnvironment([](const char* name) -> const char* { return secure_getenv(name); });
    RestSettings settings = environment.settings;
};

void warn(const std::string& text)
{
    Log_Run_Warn("Ovra-Rest-API", text.c_str());
}

} // namespace

EnvironmentSettings readEnvironment(const char* (*lookUp)(const char*))
{
    EnvironmentSettings read;
    const auto text = [&](const char* name) {
        const char* value = lookUp(name);
        return std::string(value == nullptr ? "" : value);
    };
    read.settings.caFile = text("OVRA_REST_CA_FILE");
    read.settings.pinnedKey = text("OVRA_REST_PINNED_KEY");
    readSwitch("OVRA_REST_INSECURE", lookUp("OVRA_REST_INSECURE"), read.settings.insecure, read.problems);
    readSeconds("OVRA_REST_CONNECT_TIMEOUT_S", lookUp("OVRA_REST_CONNECT_TIMEOUT_S"),
                read.settings.connectTimeoutSeconds, read.problems);
    readSeconds("OVRA_REST_TIMEOUT_S", lookUp("OVRA_REST_TIMEOUT_S"), read.settings.timeoutSeconds,
                read.problems);
    return read;
}

void warnAboutSettings(const RestSettings& settings)
{
    static std::atomic_flag problemsSaid = ATOMIC_FLAG_INIT;
    static std::atomic_flag insecureSaid = ATOMIC_FLAG_INIT;
    std::vector<std::string> problems;
    if (!problemsSaid.test_and_set()) {
        const std::lock_guard<std::mutex> lock(libraryMutex());
        problems = processWide<Current>().environment.problems;
    }
    for (const std::string& problem : problems) {
        warn(problem);
    }
    if (settings.insecure && !insecureSaid.test_and_set()) {
        warn("servers are not verified: anyone on the network can read and change what is sent; "
             "set a CA file or a pinned key instead of the insecure setting");
    }
}

/// The settings in force, after the replacement if there is one.
static RestSettings settingsInForce(const RestSettings* replacement)
{
    const std::lock_guard<std::mutex> lock(libraryMutex());
    RestSettings& settings = processWide<Current>().settings;
    if (replacement != nullptr) {
        settings = RestSettings(*replacement);
    }
    return settings;
}

} // namespace ovra::rest

RestSettings RestGetSettings()
{
    return ovra::rest::settingsInForce(nullptr);
}

void RestSetSettings(const RestSettings& settings)
{
    const ovra::NoCancellation whole;
    ovra::rest::settingsInForce(&settings);
    ovra::rest::ConnectionPool::instance().clear();
}
