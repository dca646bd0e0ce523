#include "host/Commands.h"

#include "host/ChildStatus.h"
#include "host/EndCommands.h"
#include "host/Interruption.h"
#include "host/Limited.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <stdio_ext.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace ovra::tessel {
namespace {

using std::chrono::milliseconds;

constexpr std::chrono::hours UNLIMITED(24 * 365);
constexpr milliseconds WAITED_FOR(20); ///< a command that was ended; then it is left to another thread
constexpr milliseconds LONGEST_PAUSE(500);

/** A command that a thread of its own runs. That thread, and who waits for it, share this. */
class Run
{
public:
    /** Called by the thread that is about to run it. @return false when nobody waits any more. */
    bool begin()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_thread = m_isLeft ? 0 : gettid();
        return !m_isLeft;
    }
    void end() { m_isOver = true; }

    /** Ends it, if it was begun; true when it is over. */
    bool endNow()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isLeft = true;
        if (m_thread != 0 && !m_isOver) {
            tryToEnd(m_thread);
        }
        return m_thread == 0 || m_isOver;
    }

private:
    static void tryToEnd(pid_t thread)
    {
        try {
            endCommandsOf(thread);
        } catch (const std::exception&) { // of a lack of memory; it is tried again
        }
    }

    std::mutex m_mutex;
    pid_t m_thread = 0;
    bool m_isLeft = false;
    std::atomic<bool> m_isOver{false};
};

/** Again and again: it may be about to start something, or be in the kernel. */
bool endWithin(Run& run, milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    for (milliseconds pause(1); !run.endNow(); pause = std::min(2 * pause, LONGEST_PAUSE)) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        std::this_thread::sleep_for(pause);
    }
    return true;
}

void end(const std::shared_ptr<Run>& run)
{
    if (endWithin(*run, WAITED_FOR)) {
        return;
    }
    try {
        std::thread([run] { endWithin(*run, UNLIMITED); }).detach();
    } catch (const std::exception&) { // no thread can be had: it is being killed all the same
    }
}

/** The result of a step that runs a command; none when it has not ended in time. */
template <class Result>
std::optional<Result> runWithin(std::chrono::seconds limit, const std::function<Result()>& step)
{
    sigset_t own; // a command inherits what its thread has
    pthread_sigmask(SIG_SETMASK, nullptr, &own);
    const auto run = std::make_shared<Run>();
    try {
        return within<Result>(limit, [=] {
            pthread_sigmask(SIG_SETMASK, &own, nullptr);
            struct Ended
            {
                Run& run;
                ~Ended() { run.end(); }
            } const ended{*run};
            return run->begin() ? step() : Result();
        });
    } catch (const CallEnded&) {
        end(run);
        throw;
    }
}

/** The same without a time of its own. Where no thread can be had it is done here, and not ended before. */
template <class Result>
Result untilEnded(const std::function<Result()>& step)
{
    try {
        return runWithin<Result>(UNLIMITED, step).value_or(Result());
    } catch (const std::system_error&) {
        return step();
    }
}

int runHere(const std::string& command)
{
    const ChildStatus children;
    const int status = system(command.c_str());
    if (status != -1) {
        throwIfInterrupted(status);
    }
    return status;
}

std::optional<Printed> readHere(const std::string& command)
{
    std::FILE* const output = openCommand(command);
    if (output == nullptr) {
        return std::nullopt;
    }
    Printed printed{};
    std::array<char, 4096> piece{};
    for (;;) {
        const size_t count = std::fread(piece.data(), 1, piece.size(), output);
        printed.text.append(piece.data(), count);
        if (std::ferror(output) != 0 && errno == EINTR) { // a signal of the application
            std::clearerr(output);
        } else if (count == 0) {
            break;
        }
    }
    printed.status = pclose(output);
    return printed;
}

} // namespace

std::FILE* openCommand(const std::string& command)
{
    std::FILE* const output = popen(command.c_str(), "r");
    if (output != nullptr) {
        __fsetlocking(output, FSETLOCKING_BYCALLER);
    }
    return output;
}

int runCommand(const std::string& command)
{
    return isLimited() ? untilEnded<int>([command] { return runHere(command); }) : runHere(command);
}

int runWithin(std::chrono::seconds limit, const std::string& command)
{
    return runWithin<int>(limit, [command] { return runHere(command); }).value_or(-1);
}

std::optional<Printed> printedBy(const std::string& command)
{
    return untilEnded<std::optional<Printed>>([command] { return readHere(command); });
}

} // namespace ovra::tessel
