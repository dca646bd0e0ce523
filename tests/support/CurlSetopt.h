#ifndef SUPPORT_CURLSETOPT_H
#define SUPPORT_CURLSETOPT_H

// Stands before libcurl's own curl_easy_setopt in the program whose one file includes this.

#include <cstdarg>
#include <curl/curl.h>
#include <dlfcn.h>

/** What an option is set to instead of what was given, which is as wide as a pointer whatever it is. */
void* chosenArgument(CURLoption option, void* given);

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
    return next(handle, option, chosenArgument(option, argument));
}

#endif
