#ifndef TORTURE_EXCEPTIONS_H
#define TORTURE_EXCEPTIONS_H

namespace torture {

/** What is none of the SDK's code, and what it cannot keep from happening. */
struct Exception
{
    bool isCrash;
    const char* where; ///< stands in the stack of the crash, or of the call that failed
    const char* told; ///< of one that is no crash, how the line of what is wrong begins; of one that is, what
                      ///< stands in the stack of the call that failed
    const char* what;
};

constexpr Exception EXCEPTIONS[] = {
    {true, "terminate called without an active exception", "",
     "the C++ library itself had no memory when the process started, and so none for an exception"},
    {true, "(SSL_set0_", "libssl.so.3",
     "OpenSSL 3.5's SSL_set_connect_state() cannot say that it had no memory; libcurl goes on without its "
     "buffers"},
    {false, "libcrypto.so.3", "the next round fails, loginDevice: says no",
     "OpenSSL starts once; where it could not it never works in this process, and each login says no"},
};

} // namespace torture

#endif
