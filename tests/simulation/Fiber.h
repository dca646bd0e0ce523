#ifndef SIMULATION_FIBER_H
#define SIMULATION_FIBER_H

#include <functional>
#include <ucontext.h>
#include <vector>

namespace simulation {

/**
 * A thread of a simulated process: it runs on a stack of its own, one at a time, and stops only where it says
 * so. What is thread_local in this program is each one's own, and so are the exceptions that it handles.
 */
class Fiber
{
public:
    /** @param body throws nothing. */
    explicit Fiber(std::function<void()> body);
    /** It has ended, or was never resumed. */
    ~Fiber();
    Fiber(const Fiber&) = delete;
    Fiber& operator=(const Fiber&) = delete;

    /** Runs it until it pauses or ends; not from within a fiber. */
    void resume();
    bool hasEnded() const { return m_hasEnded; }

    /** Goes back to who has resumed the running one. */
    static void pause();
    /** The one that runs; null outside. */
    static Fiber* running();

private:
    static void enter();
    void exchangeThread();

    const std::function<void()> m_body;
    char* m_stack;
    ucontext_t m_context = {};
    ucontext_t m_caller = {};
    std::vector<char> m_thread;     ///< the thread_local objects of this program
    std::vector<char> m_exceptions; ///< those that are thrown or caught
    bool m_hasEnded = false;
};

} // namespace simulation

#endif
