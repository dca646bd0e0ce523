#include "FuzzTarget.h"

#include "Settings.h"

#include <cstring>

namespace {

constexpr const char* NAMES[] = {"OVRA_REST_CA_FILE", "OVRA_REST_PINNED_KEY", "OVRA_REST_INSECURE",
                                 "OVRA_REST_CONNECT_TIMEOUT_S", "OVRA_REST_TIMEOUT_S"};
std::vector<std::string> g_values; ///< of the variables, in this order; one that is missing is not set

const char* lookUp(const char* name)
{
    for (size_t i = 0; i < g_values.size() && i < std::size(NAMES); ++i) {
        if (std::strcmp(NAMES[i], name) == 0) {
            return g_values[i].c_str();
        }
    }
    return nullptr;
}

bool isWhole(const std::string& text, long number)
{
    return text == std::to_string(number);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    g_values = linesOf(textOf(data, size));
    for (std::string& value : g_values) {
        value = value.c_str(); // an environment holds no NUL
    }
    const ovra::rest::EnvironmentSettings read = ovra::rest::readEnvironment(&lookUp);
    const RestSettings defaults;
    g_values.resize(std::size(NAMES));
    mustHold(read.settings.caFile == g_values[0] && read.settings.pinnedKey == g_values[1],
             "texts are as given");
    mustHold(read.settings.insecure == (g_values[2] == "1"), "nothing but 1 turns the proof off");
    const long connecting = read.settings.connectTimeoutSeconds;
    const long whole = read.settings.timeoutSeconds;
    mustHold(connecting >= 1 && connecting <= 86400 && whole >= 1 && whole <= 86400,
             "limits are in their range");
    mustHold(connecting == defaults.connectTimeoutSeconds || isWhole(g_values[3], connecting) ||
                 std::stol(g_values[3]) == connecting,
             "the limit is the one that was given");
    mustHold(read.problems.size() <= 3, "a variable has no more than one fault");
    return 0;
}
