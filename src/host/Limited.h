#ifndef HOST_LIMITED_H
#define HOST_LIMITED_H

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
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

/** The results of steps that are done so; a default one for each that is left, and for one that is null. */
template <class Result>
std::vector<Result> allWithin(std::chrono::seconds limit, const std::vector<std::function<Result()>>& steps)
{
    struct Results
    {
        std::mutex mutex;
        std::vector<Result> all;
    };
    const auto results = std::make_shared<Results>();
    results->all.resize(steps.size());
    std::vector<std::function<void()>> kept;
    for (size_t i = 0; i < steps.size(); ++i) {
        if (steps[i]) {
            kept.emplace_back([results, i, step = steps[i]] {
                Result result = step();
                const std::lock_guard<std::mutex> guard(results->mutex);
                results->all[i] = std::move(result);
            });
        }
    }
    doWithin(limit, kept);
    const std::lock_guard<std::mutex> guard(results->mutex);
    return results->all;
}

} // namespace ovra::tessel

#endif
