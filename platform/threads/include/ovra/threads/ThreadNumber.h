#ifndef OVRA_THREADS_THREADNUMBER_H
#define OVRA_THREADS_THREADNUMBER_H

#include <sys/types.h>
#include <unistd.h>

namespace ovra {

/** The number of this thread, as the kernel has it; asked of it once, and again in a child of the process. */
inline pid_t threadNumber(pid_t process)
{
    struct Thread
    {
        pid_t process;
        pid_t number;
    };
    thread_local Thread t_thread = {0, 0};
    if (t_thread.process != process) {
        t_thread = {process, gettid()};
    }
    return t_thread.number;
}

} // namespace ovra

#endif
