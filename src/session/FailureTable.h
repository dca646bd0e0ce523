#ifndef SESSION_FAILURETABLE_H
#define SESSION_FAILURETABLE_H

#include <tessel/Failure.h>

namespace ovra::tessel {

/** What a result that is no answer of the array means. */
struct FailureClass
{
    FailureKind kind;
    FailureReason reason;
    bool canTryAgain;
    bool mayBeDone;
    const char* transport; ///< of the last request of this thread; valid until its next one
};

/** Of a result code of the SDK's own or of the REST library's, which may tell more of its last request. */
FailureClass classOf(int result) noexcept;

} // namespace ovra::tessel

#endif
