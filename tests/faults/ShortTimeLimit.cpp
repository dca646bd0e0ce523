#include "faults/ShortTimeLimit.h"

#include <atomic>
#include <cstdarg>
#include <curl/curl.h>
#include <dlfcn.h>

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

// libcurl's own, but for the time limit: the settings count in seconds, which is long for some hundred black
// holes. Every argument is as wide as a pointer.
#undef curl_easy_setopt
extern "C" CURLcode curl_easy_setopt(CURL* handle, CURLoption option, ...)
{
    using Function = CURLcode (*)(CURL*, CURLoption, ...);
    static const auto next = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "curl_easy_setopt"));
    va_list arguments;
#ifdef __clang__ // the enumeration is libcurl's, and of the width that is passed
#pragma clang diagnostic ignored "-Wvarargs"
#endif
    va_start(arguments, option);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return option == CURLOPT_TIMEOUT_MS && g_isShort ? next(handle, option, SHORT_MS)
                                                     : next(handle, option, argument);
}
