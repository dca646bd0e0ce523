#include "faults/ShortTimeLimit.h"

#include "support/CurlSetopt.h"

#include <atomic>

namespace {

std::atomic<bool> g_isShort{false};

constexpr long SHORT_MS = 120;

} // namespace

ShortTimeLimit::ShortTimeLimit(bool isShort)
{
    g_isShort = isShort;
}

ShortTimeLimit::~ShortTimeLimit()
{
    g_isShort = false;
}

// The settings count in seconds, which is long for some hundred black holes.
void* chosenArgument(CURLoption option, void* given)
{
    return option == CURLOPT_TIMEOUT_MS && g_isShort ? reinterpret_cast<void*>(SHORT_MS) : given;
}
