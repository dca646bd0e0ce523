#include "simulation/Fiber.h"

#include <cstring>
#include <cxxabi.h>
#include <link.h>
#include <stdexcept>
#include <sys/mman.h>

namespace simulation {
namespace {

constexpr size_t STACK_BYTES = 256U << 10U;
constexpr size_t EXCEPTIONS_BYTES = 16; // of __cxa_eh_globals: a pointer and a count

Fiber* g_running = nullptr;

/** The stacks of fibers that have ended. */
std::vector<char*>& freeStacks()
{
    static std::vector<char*> stacks;
    return stacks;
}

char* takeStack()
{
    if (!freeStacks().empty()) {
        char* const stack = freeStacks().back();
        freeStacks().pop_back();
        return stack;
    }
    void* const stack = mmap(nullptr, STACK_BYTES, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (stack == MAP_FAILED) {
        throw std::runtime_error("no memory for a stack");
    }
    return static_cast<char*>(stack);
}

/** Where the thread_local objects of this program stand in this thread; those of libraries are others. */
struct ThreadBlock
{
    char* start = nullptr;
    size_t bytes = 0;
};

int findBlock(dl_phdr_info* program, size_t /*size*/, void* found)
{
    for (int i = 0; i < program->dlpi_phnum; ++i) {
        if (program->dlpi_phdr[i].p_type == PT_TLS) {
            *static_cast<ThreadBlock*>(found) = {static_cast<char*>(program->dlpi_tls_data),
                                                 program->dlpi_phdr[i].p_memsz};
        }
    }
    return 1; // the program itself comes first
}

const ThreadBlock& threadBlock()
{
    static const ThreadBlock block = [] {
        ThreadBlock found;
        dl_iterate_phdr(findBlock, &found);
        return found;
    }();
    return block;
}

/** std::swap_ranges, by far faster. */
void exchange(std::vector<char>& kept, char* place)
{
    static std::vector<char> between;
    between.assign(place, place + kept.size());
    std::memcpy(place, kept.data(), kept.size());
    kept.swap(between);
}

/** As it is where no fiber runs: what a new thread begins with. */
const std::vector<char>& freshThread()
{
    static const std::vector<char> fresh(threadBlock().start, threadBlock().start + threadBlock().bytes);
    return fresh;
}

} // namespace

Fiber::Fiber(std::function<void()> body)
    : m_body(std::move(body)), m_stack(takeStack()), m_thread(freshThread()), m_exceptions(EXCEPTIONS_BYTES)
{
    getcontext(&m_context);
    m_context.uc_stack.ss_sp = m_stack;
    m_context.uc_stack.ss_size = STACK_BYTES;
    m_context.uc_link = nullptr;
    makecontext(&m_context, &Fiber::enter, 0);
}

Fiber::~Fiber()
{
    freeStacks().push_back(m_stack);
}

void Fiber::exchangeThread()
{
    exchange(m_thread, threadBlock().start);
    exchange(m_exceptions, reinterpret_cast<char*>(abi::__cxa_get_globals()));
}

void Fiber::resume()
{
    exchangeThread();
    g_running = this;
    swapcontext(&m_caller, &m_context);
    g_running = nullptr;
    exchangeThread();
}

void Fiber::pause()
{
    Fiber& self = *g_running;
    swapcontext(&self.m_context, &self.m_caller);
}

Fiber* Fiber::running()
{
    return g_running;
}

void Fiber::enter()
{
    Fiber& self = *g_running;
    self.m_body();
    self.m_hasEnded = true;
    pause();
}

} // namespace simulation
