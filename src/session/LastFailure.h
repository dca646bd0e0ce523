#ifndef SESSION_LASTFAILURE_H
#define SESSION_LASTFAILURE_H

#include <tessel/Failure.h>

#include <functional>
#include <string>
#include <string_view>

namespace ovra::tessel {

/**
 * One call of the interface, with those that it makes itself: the outermost one that ends well leaves no
 * failure behind, unless one was kept.
 */
class Call
{
public:
    Call() noexcept;
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

private:
    const int m_exceptions; ///< in flight when it began
};

/** The call at work returns though a step of it failed: that failure stays the last one. */
void keepFailure() noexcept;

/** Notes a failure that is none of an answer of the array; says how it is thrown. */
OvraAPIException notedFailure(FailureKind kind, const std::string& message, bool canTryAgain = false);

/** Notes that a request of an operation ended with a result of its own; what kind that is stands in a table.
 */
void noteResult(int result, std::string_view operation, std::string_view message) noexcept;

/** Notes an error answer of the array. */
void noteRefusal(int code, std::string_view description, std::string_view operation,
                 std::string_view message) noexcept;

/** Corrects the kind of what was noted, where the result alone does not tell it. */
void noteKind(FailureKind kind) noexcept;

/** Notes what leaves a call, unless it is what was noted last. */
void noteThrown(const OvraAPIException& thrown, FailureKind kind) noexcept;

/** Notes that a call ended for want of memory; how far it had come is not known. */
void noteLackOfMemory() noexcept;

/** What makes the last failure of this thread the last one again, for who throws it later. */
std::function<void()> rememberedFailure();

/** Does what may fail by itself, and leaves the last failure as it was. */
void asideOfFailure(const std::function<void()>& aside);

/** Does the steps of a call that is no operation; what leaves it and was not noted is of that kind. */
template <class Steps>
auto calling(FailureKind kind, const Steps& steps) -> decltype(steps())
{
    const Call call;
    try {
        return steps();
    } catch (const OvraAPIException& thrown) {
        noteThrown(thrown, kind);
        throw;
    }
}

} // namespace ovra::tessel

#endif
