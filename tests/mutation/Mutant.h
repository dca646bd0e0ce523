#ifndef MUTATION_MUTANT_H
#define MUTATION_MUTANT_H

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

/**
 * Every mutant is compiled in; the environment chooses the one that works. MUTANT: its number.
 * MUTANTS_REACHED: a file of MOST bytes; the byte of each mutant whose place was reached becomes 1, in every
 * process that has the variable.
 */
namespace mutation {

constexpr unsigned MOST = 1U << 22U;

static unsigned chosen = 0;
static unsigned char* reached = nullptr;

/** Before all else in the program. Past the C library, whose functions tests replace. */
__attribute__((constructor(101))) static void readEnvironment()
{
    if (const char* const number = std::getenv("MUTANT")) {
        chosen = static_cast<unsigned>(std::strtoul(number, nullptr, 10));
    }
    const char* const path = std::getenv("MUTANTS_REACHED");
    if (path == nullptr) {
        return;
    }
    const long file = syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC);
    if (file >= 0) {
        const long place = syscall(SYS_mmap, nullptr, MOST, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0L);
        reached = place == -1 ? nullptr : reinterpret_cast<unsigned char*>(place); // NOLINT: an address
        syscall(SYS_close, file);
    }
}

/** Whether this mutant works. */
inline bool isChosen(unsigned mutant)
{
    if (reached != nullptr) {
        reached[mutant] = 1;
    }
    return mutant == chosen;
}

/** The same for functions that the compiler calls too, where none works. */
constexpr bool at(unsigned mutant)
{
    return !__builtin_is_constant_evaluated() && isChosen(mutant);
}

} // namespace mutation

#endif
