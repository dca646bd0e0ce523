#ifndef HOST_LIMITED_H
#define HOST_LIMITED_H

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

// Steps that may hang in the kernel: each is done on a thread of its own, which is left to itself when it
// takes too long, or the call that waits for it ends: CallEnded is thrown then. So they own what they work
// with, and write no log.

namespace ovra::tessel {

/** Does it; false when it has not ended in time. What it throws is thrown here. */
bool endsWithin(std::chrono::seconds limit, const std::function<void()>& step);

/** The result of a step; none when it has not ended in time. */
template <class Result>
std::optional<Result> within(std::chrono::seconds limit, const std::function<Result()>& step)
{
    const auto result = std::make_shared<Result>();
    return endsWithin(limit, [=] { *result = step(); }) ? std::make_optional(*result) : std::nullopt;
}

/**
 * Does all of them side by side, a few at a time, and more where these hang; those not done when the time is
 * up are left.
 */
void doWithin(std::chrono::seconds limit, const std::vector<std::function<void()>>& steps);

} // namespace ovra::tessel

#endif
