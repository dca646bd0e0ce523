#include <ovra/bounds/bounds.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

/// Sizes above this come from a negative number or a wrapped difference.
constexpr size_t LARGEST_SIZE = SIZE_MAX >> 1;

bool usable(const void* dest, size_t destMax)
{
    return dest != nullptr && destMax != 0 && destMax <= LARGEST_SIZE;
}

bool overlap(const char* one, size_t oneSize, const char* other, size_t otherSize)
{
    const auto a = reinterpret_cast<uintptr_t>(one);
    const auto b = reinterpret_cast<uintptr_t>(other);
    return a < b + otherSize && b < a + oneSize;
}

/// Puts at most count characters of src, which must fit, at position used of dest.
int putText(char* dest, size_t destMax, size_t used, const char* src, size_t count)
{
    if (src == nullptr) {
        dest[0] = '\0';
        return EINVAL;
    }
    const size_t space = destMax - used;
    const size_t length = strnlen(src, std::min(count, space));
    // The terminator of src is read too, unless count ended the copy before it.
    const size_t read = length < count ? length + 1 : length;
    if (length >= space || overlap(dest, used + length + 1, src, read)) {
        dest[0] = '\0';
        return ERANGE;
    }
    memcpy(dest + used, src, length);
    dest[used + length] = '\0';
    return 0;
}

/// Prints into size bytes; the length that the whole text has, or a negative number.
int printText(char* dest, size_t size, const char* format, va_list args)
{
    if (format == nullptr) {
        return -1;
    }
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    return vsnprintf(dest, size, format, args);
#pragma GCC diagnostic pop
}

} // namespace

int memset_s(void* dest, size_t destMax, int c, size_t count)
{
    if (!usable(dest, destMax)) {
        return EINVAL;
    }
    memset(dest, c, std::min(count, destMax));
    // Memory that is cleared just before it dies is cleared all the same.
    __asm__ __volatile__("" : : "r"(dest) : "memory");
    return count > destMax ? ERANGE : 0;
}

int strcpy_s(char* dest, size_t destMax, const char* src)
{
    return strncpy_s(dest, destMax, src, SIZE_MAX);
}

int strncpy_s(char* dest, size_t destMax, const char* src, size_t count)
{
    if (!usable(dest, destMax)) {
        return EINVAL;
    }
    return putText(dest, destMax, 0, src, count);
}

int strcat_s(char* dest, size_t destMax, const char* src)
{
    if (!usable(dest, destMax)) {
        return EINVAL;
    }
    const size_t used = strnlen(dest, destMax);
    if (used == destMax) {
        dest[0] = '\0';
        return ERANGE;
    }
    return putText(dest, destMax, used, src, SIZE_MAX);
}

int sprintf_s(char* dest, size_t destMax, const char* format, ...)
{
    if (!usable(dest, destMax)) {
        return -1;
    }
    va_list args;
    va_start(args, format);
    const int length = printText(dest, destMax, format, args);
    va_end(args);
    if (length < 0 || static_cast<size_t>(length) >= destMax) {
        dest[0] = '\0';
        return -1;
    }
    return length;
}

int snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int length = vsnprintf_s(dest, destMax, count, format, args);
    va_end(args);
    return length;
}

int vsnprintf_s(char* dest, size_t destMax, size_t count, const char* format, va_list args)
{
    if (!usable(dest, destMax)) {
        return -1;
    }
    const size_t most = std::min(count, destMax - 1);
    const int length = printText(dest, most + 1, format, args);
    if (length < 0) {
        dest[0] = '\0';
        return -1;
    }
    return static_cast<size_t>(length) > most ? -1 : length;
}
