#include "session/CallsAtWork.h"

#include "session/RestAdditions.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <poll.h>
#include <unistd.h>

namespace ovra::tessel {

namespace {

using Clock = std::chrono::steady_clock;

thread_local const RestCall* t_limit = nullptr;

void set(const RestCall* limit) noexcept
{
    t_limit = limit;
    if (RestSetCall != nullptr) {
        RestSetCall(limit);
    }
}

Clock::time_point end() noexcept
{
    Clock::time_point earliest = Clock::time_point::max();
    for (const RestCall* limit = t_limit; limit != nullptr; limit = limit->outer) {
        earliest = std::min(earliest, limit->until);
    }
    return earliest;
}

} // namespace

Clock::time_point endOf(std::chrono::milliseconds whole)
{
    constexpr auto LONGEST = std::chrono::hours(24 * 365);
    return whole > LONGEST ? Clock::time_point::max() : Clock::now() + whole;
}

bool isCancelledWithin(const RestCall* limit, int milliseconds) noexcept
{
    constexpr size_t MOST = 64; // of cancellations within each other
    std::array<pollfd, MOST> polled{};
    nfds_t count = 0;
    for (; limit != nullptr && count < MOST; limit = limit->outer) {
        if (limit->cancelDescriptor >= 0) {
            polled.at(count++) = {limit->cancelDescriptor, POLLIN, 0};
        }
    }
    return poll(polled.data(), count, milliseconds) > 0;
}

void beginLimit(RestCall& limit)
{
    limit.outer = t_limit;
    set(&limit);
}

void endLimit(const RestCall& limit) noexcept
{
    set(limit.outer);
}

bool isLimited() noexcept
{
    return t_limit != nullptr;
}

FailureKind whyToEnd() noexcept
{
    if (t_limit == nullptr) {
        return FailureKind::NONE;
    }
    return isCancelledWithin(t_limit, 0) ? FailureKind::CANCELLED
           : Clock::now() >= end()       ? FailureKind::TIMED_OUT
                                         : FailureKind::NONE;
}

void pauseFor(unsigned int microseconds)
{
    if (t_limit == nullptr) {
        usleep(microseconds);
        return;
    }
    const auto whole = std::chrono::ceil<std::chrono::milliseconds>(std::chrono::microseconds(microseconds));
    const auto left =
        end() == Clock::time_point::max()
            ? whole
            : std::min(whole, std::chrono::ceil<std::chrono::milliseconds>(end() - Clock::now()));
    isCancelledWithin(t_limit, static_cast<int>(std::max<long>(left.count(), 0)));
}

void throwIfEnded()
{
    if (const FailureKind why = whyToEnd(); why != FailureKind::NONE) {
        throw CallEnded{why};
    }
}

void pauseOrEnd(unsigned int microseconds)
{
    pauseFor(microseconds);
    throwIfEnded();
}

void sleepOrEnd(unsigned int seconds)
{
    if (isLimited()) {
        pauseOrEnd(seconds * 1000000);
    } else {
        sleep(seconds);
    }
}

} // namespace ovra::tessel
