// Decides which allocation or call fails. It works from before the first constructor of a library on, so that
// nothing here is initialised at run time.

#include "Faults.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <execinfo.h>
#include <initializer_list>
#include <sys/mman.h>
#include <unistd.h>

namespace torture {
namespace {

constexpr int DEPTH = 12; // frames that tell one place from another

std::atomic<bool> g_isArmed{false};
Plan g_plan;
Places* g_places;
std::atomic<long> g_count{0};
std::atomic<bool> g_hasFired{false};
std::atomic<uint64_t> g_place{0};
int g_stackFile = -1;
std::atomic<long> g_blocks{0};
thread_local int t_aside = 0;

uint64_t stackHash()
{
    void* frames[DEPTH];
    const int depth = backtrace(frames, DEPTH);
    uint64_t hash = 14695981039346656037U; // FNV-1a
    for (int i = 2; i < depth; ++i) {
        hash = (hash ^ reinterpret_cast<uintptr_t>(frames[i])) * 1099511628211U;
    }
    return hash;
}

void tellStack(int file)
{
    const Aside aside;
    void* frames[64];
    backtrace_symbols_fd(frames, backtrace(frames, 64), file);
}

/** Whether this call is the one that is planned. @param place 0 where it was not wanted. */
bool isPlanned(long number, uint64_t place)
{
    return g_plan.place == 0 ? number == g_plan.number : !g_hasFired && place == g_plan.place;
}

bool isDue()
{
    const long number = g_count++;
    const bool isCounted = g_places != nullptr && number < static_cast<long>(Places::MOST);
    const bool isReached = g_plan.number >= 0 && number >= g_plan.number;
    uint64_t place = 0;
    if (isCounted || (isReached && !g_hasFired)) {
        const Aside aside;
        place = stackHash();
    }
    if (isCounted) {
        g_places->hashes[number] = place;
    }
    if (!isReached || !(isPlanned(number, place) || (g_plan.mode == Mode::LASTING && g_hasFired))) {
        return false;
    }
    if (!g_hasFired.exchange(true)) {
        g_place = place;
        if (g_stackFile >= 0) {
            tellStack(g_stackFile);
        }
    }
    return true;
}

/** Tells where the process has come to its end. */
void tellCrash(int signal)
{
    dprintf(STDERR_FILENO, "crash by signal %d at\n", signal);
    tellStack(STDERR_FILENO);
    std::signal(signal, SIG_DFL);
    raise(signal);
}

/** The program's first code of all: the constructors of the libraries come behind it. */
void begin(int, char**, char** environment)
{
    static char stack[1UL << 16U]; // of the handler: what has run out may be the stack
    stack_t own = {};
    own.ss_sp = stack;
    own.ss_size = sizeof(stack);
    sigaltstack(&own, nullptr);
    struct sigaction telling = {};
    telling.sa_handler = tellCrash;
    telling.sa_flags = SA_ONSTACK | static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL}) {
        sigaction(signal, &telling, nullptr);
    }
    for (; *environment != nullptr; ++environment) {
        int family = 0;
        int mode = 0;
        long number = 0;
        int places = -1;
        if (sscanf(*environment, "TORTURE=%d:%d:%ld:%d:%d", &family, &mode, &number, &places, &g_stackFile) ==
            5) {
            void* const shared =
                places < 0 ? MAP_FAILED
                           : mmap(nullptr, sizeof(Places), PROT_READ | PROT_WRITE, MAP_SHARED, places, 0);
            arm({static_cast<Family>(family), static_cast<Mode>(mode), number},
                shared == MAP_FAILED ? nullptr : static_cast<Places*>(shared));
        }
    }
}

[[gnu::used, gnu::section(".preinit_array")]] void (*const g_begin)(int, char**, char**) = begin;

} // namespace

void arm(const Plan& plan, Places* places)
{
    g_plan = plan;
    g_places = places;
    g_count = 0;
    g_hasFired = false;
    g_isArmed = true;
}

long disarm()
{
    g_isArmed = false;
    if (g_places != nullptr) {
        g_places->reached = g_count;
    }
    return g_count;
}

void tellWhereItFires(int file)
{
    g_stackFile = file;
}

bool hasFired()
{
    return g_hasFired;
}

uint64_t placeFired()
{
    return g_place;
}

long liveBlocks()
{
    return g_blocks;
}

Aside::Aside()
{
    ++t_aside;
}

Aside::~Aside()
{
    --t_aside;
}

bool failsMemory()
{
    if (!g_isArmed || t_aside != 0 || g_plan.family != Family::MEMORY || !isDue()) {
        return false;
    }
    errno = ENOMEM;
    return true;
}

bool failsCall(int error, bool canBeInterrupted)
{
    const bool isInterrupted = g_plan.mode == Mode::INTERRUPTED;
    if (!g_isArmed || t_aside != 0 || g_plan.family != Family::CALLS ||
        (isInterrupted && !canBeInterrupted) || !isDue()) {
        return false;
    }
    errno = isInterrupted ? EINTR : error;
    return true;
}

void countBlocks(long more)
{
    g_blocks.fetch_add(more, std::memory_order_relaxed);
}

} // namespace torture
