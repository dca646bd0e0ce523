/* Of a program that is built for coverage: what a forked child executes before its _exit(), and a process before a signal
   that it sends itself and may die of, is told as well. */

#include <sys/types.h>
#include <unistd.h>

void __gcov_dump(void);
void __gcov_reset(void);
void __real__exit(int status) __attribute__((noreturn));
void __wrap__exit(int status) __attribute__((noreturn));
int __real_kill(pid_t process, int signal);
int __wrap_kill(pid_t process, int signal);
int __real_raise(int signal);
int __wrap_raise(int signal);

void __wrap__exit(int status)
{
    __gcov_dump();
    __real__exit(status);
}

int __wrap_kill(pid_t process, int signal)
{
    if (process == getpid()) {
        __gcov_dump();
        __gcov_reset();
    }
    return __real_kill(process, signal);
}

int __wrap_raise(int signal)
{
    __gcov_dump();
    __gcov_reset();
    return __real_raise(signal);
}
