#ifndef OVRA_REST_RESTCALL_H
#define OVRA_REST_RESTCALL_H

/** @file
 * What holds for the requests of one thread for a while. A build of this library may lack it. */

#include <ovra/rest/RestSettings.h>

#include <chrono>

/** What holds for the requests of a thread while it is set; what is not given here stays as it is. */
struct RestCall
{
    const RestSettings* settings = nullptr; ///< in place of the process's, whole
    std::chrono::steady_clock::time_point until = std::chrono::steady_clock::time_point::max();
    ///< requests end with 28 (timed out) by then
    int cancelDescriptor = -1; ///< requests end with 42 (cancelled) as soon as it can be read; it is not read
    const RestCall* outer = nullptr; ///< holds too: the earlier end, and each descriptor
};

/**
 * Sets what holds for the requests of this thread from now on. Allocates nothing.
 * @param call lives until another one is set; null: nothing of it.
 * @return what was set before.
 */
__attribute__((visibility("default"))) const RestCall* RestSetCall(const RestCall* call) noexcept;

/**
 * Sets what this thread's requests keep from now on of a list: of each record that is an object this member
 * alone, so that a list may be larger than an answer that is kept whole. One record ("data" is an object) is
 * kept whole. RestResponse then shows a record until it is asked for another one.
 * @param member its name, in letters and digits; lives until another one is set. Null: everything is kept.
 * @return what was set before.
 */
__attribute__((visibility("default"))) const char* RestKeepMember(const char* member) noexcept;

#endif
