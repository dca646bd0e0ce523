// The allocator of the whole process, libcurl's, OpenSSL's and the C library's own allocations too: the C
// library's, but that one of them fails where that is planned.

#include "Faults.h"

#include <cerrno>
#include <cstddef>

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* memory);

} // extern "C"

namespace {

void* counted(void* memory)
{
    torture::countBlocks(memory != nullptr ? 1 : 0);
    return memory;
}

} // namespace

extern "C" {

void* malloc(size_t size)
{
    return torture::failsMemory() ? nullptr : counted(__libc_malloc(size));
}

void* calloc(size_t count, size_t size)
{
    return torture::failsMemory() ? nullptr : counted(__libc_calloc(count, size));
}

void* realloc(void* memory, size_t size)
{
    if (torture::failsMemory()) {
        return nullptr;
    }
    void* const moved = __libc_realloc(memory, size);
    torture::countBlocks((memory == nullptr && moved != nullptr ? 1 : 0) -
                         (memory != nullptr && size == 0 ? 1 : 0));
    return moved;
}

void* memalign(size_t alignment, size_t size)
{
    return torture::failsMemory() ? nullptr : counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(size_t alignment, size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void** memory, size_t alignment, size_t size)
{
    const int before = errno;
    void* const found = memalign(alignment, size);
    errno = before;
    if (found == nullptr) {
        return ENOMEM;
    }
    *memory = found;
    return 0;
}

void free(void* memory)
{
    torture::countBlocks(memory != nullptr ? -1 : 0);
    __libc_free(memory);
}

} // extern "C"
