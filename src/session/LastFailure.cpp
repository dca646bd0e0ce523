#include "session/LastFailure.h"

#include "session/FailureTable.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <string_view>

namespace ovra::tessel {

namespace {

/** A text of a fixed place: a failure is noted without memory of the heap, and gone with its thread. */
template <size_t SIZE>
struct Text
{
    char bytes[SIZE];

    void set(std::string_view text) noexcept
    {
        size_t length = std::min(text.size(), SIZE - 1);
        while (length < text.size() && length > 0 && (text[length] & 0xC0) == 0x80) {
            --length; // not in the middle of a character
        }
        memcpy(bytes, text.data(), length);
        bytes[length] = '\0';
    }
};

struct Noted
{
    FailureKind kind;
    FailureReason reason;
    int result;
    int code;
    bool canTryAgain;
    bool mayBeDone;
    Text<1024> description;
    Text<256> transport;
    Text<64> operation;
    Text<1536> message;
};

thread_local Noted t_noted = {};
thread_local bool t_isForgotten = true; ///< a success came behind it
thread_local bool t_isKept = false;
thread_local unsigned t_depth = 0;

/** What was noted when it is made. */
struct Remembered
{
    Noted noted = t_noted;
    bool isForgotten = t_isForgotten;
    bool isKept = t_isKept;

    void again() const noexcept
    {
        t_noted = noted;
        t_isForgotten = isForgotten;
        t_isKept = isKept;
    }
};

void begin(FailureKind kind, std::string_view operation, std::string_view message) noexcept
{
    t_isForgotten = false;
    t_noted.kind = kind;
    t_noted.reason = FailureReason::OTHER;
    t_noted.result = 1;
    t_noted.code = 0;
    t_noted.canTryAgain = false;
    t_noted.mayBeDone = false;
    t_noted.description.set("");
    t_noted.transport.set("");
    t_noted.operation.set(operation);
    t_noted.message.set(message);
}

/** What an exception says, without the word that each begins with. */
std::string_view messageOf(const OvraAPIException& thrown)
{
    constexpr std::string_view FIRST = "Exception:";
    const std::string_view text = thrown.what();
    return text.substr(0, FIRST.size()) == FIRST ? text.substr(FIRST.size()) : text;
}

bool isNoted(const OvraAPIException& thrown)
{
    Text<1536> message;
    message.set(messageOf(thrown));
    return t_noted.kind != FailureKind::NONE && strcmp(message.bytes, t_noted.message.bytes) == 0;
}

/** Messages end with the name of the operation. */
std::string_view lastWord(std::string_view message)
{
    return message.substr(message.rfind(' ') + 1);
}

/** The array's words in the text of an exception, between what the SDK puts around them. */
std::string_view descriptionIn(std::string_view message, std::string_view operation)
{
    constexpr std::string_view MARK = ", description:";
    const size_t found = message.find(MARK);
    if (found == std::string_view::npos) {
        return "";
    }
    const size_t begin = found + MARK.size();
    const size_t end = std::max(begin, message.size() - operation.size() - 1); // a blank
    return message.substr(begin, end - begin);
}

Failure asTold(const Noted& noted)
{
    Failure failure;
    failure.kind = noted.kind;
    failure.reason = noted.reason;
    failure.result = noted.result;
    failure.code = noted.code;
    failure.description = noted.description.bytes;
    failure.transport = noted.transport.bytes;
    failure.operation = noted.operation.bytes;
    failure.message = noted.message.bytes;
    failure.canTryAgain = noted.canTryAgain;
    failure.mayBeDone = noted.mayBeDone;
    return failure;
}

} // namespace

Call::Call() noexcept : m_exceptions(std::uncaught_exceptions())
{
    if (t_depth++ == 0) {
        t_isKept = false;
    }
}

Call::~Call()
{
    if (--t_depth == 0 && !t_isKept && std::uncaught_exceptions() == m_exceptions) {
        t_isForgotten = true;
    }
}

void keepFailure() noexcept
{
    t_isKept = true;
}

OvraAPIException notedFailure(FailureKind kind, const std::string& message, bool canTryAgain)
{
    begin(kind, lastWord(message), message);
    t_noted.canTryAgain = canTryAgain;
    return OvraAPIException(message);
}

void noteResult(int result, std::string_view operation, std::string_view message) noexcept
{
    const FailureClass found = classOf(result);
    begin(found.kind, operation, message);
    t_noted.reason = found.reason;
    t_noted.result = result;
    t_noted.canTryAgain = found.canTryAgain;
    t_noted.mayBeDone = found.mayBeDone;
    t_noted.transport.set(found.transport);
}

void noteRefusal(int code, std::string_view description, std::string_view operation,
                 std::string_view message) noexcept
{
    begin(FailureKind::REFUSED, operation, message);
    const bool isNotReady = code == ARRAY_NOT_READY || code == ARRAY_LUN_GROUP_NOT_READY;
    t_noted.reason = isNotReady ? FailureReason::NOT_READY : FailureReason::OTHER;
    t_noted.result = code;
    t_noted.code = code;
    t_noted.canTryAgain = isNotReady;
    t_noted.description.set(description);
}

void noteKind(FailureKind kind) noexcept
{
    t_noted.kind = kind;
}

void noteLackOfMemory() noexcept
{
    begin(FailureKind::HOST, "", "out of memory");
    t_noted.canTryAgain = true;
    t_noted.mayBeDone = true;
}

void noteThrown(const OvraAPIException& thrown, FailureKind kind) noexcept
{
    if (isNoted(thrown)) {
        t_isForgotten = false;
        return;
    }
    const std::string_view message = messageOf(thrown);
    const std::string_view operation =
        lastWord(message); // a call of this thread came between: the text tells
    if (const auto* refusal = dynamic_cast<const OvraAPIExceptionWithErrCode*>(&thrown)) {
        noteRefusal(refusal->getErrCode(), descriptionIn(message, operation), operation, message);
    } else {
        constexpr std::string_view NO_ANSWER = "url error or internet error ";
        const bool isNoAnswer = message.size() == NO_ANSWER.size() + operation.size() &&
                                message.substr(0, NO_ANSWER.size()) == NO_ANSWER;
        begin(isNoAnswer ? FailureKind::NOT_REACHABLE : kind, operation, message);
    }
}

std::function<void()> rememberedFailure()
{
    return [now = Remembered()] { now.again(); };
}

void asideOfFailure(const std::function<void()>& aside)
{
    const Remembered before;
    aside();
    before.again();
}

Failure lastFailure()
{
    return t_isForgotten ? Failure() : asTold(t_noted);
}

Failure failureOf(const OvraAPIException& thrown)
{
    Failure found;
    asideOfFailure([&] {
        noteThrown(thrown, FailureKind::HOST);
        found = asTold(t_noted);
    });
    return found;
}

void clearFailure() noexcept
{
    t_isForgotten = true;
}

} // namespace ovra::tessel
