#ifndef OVRA_BOUNDS_BOUNDS_H
#define OVRA_BOUNDS_BOUNDS_H

#include <stdarg.h>
#include <stddef.h>

/**
 * Bounds-checked memory and string functions.
 *
 * destMax is the size of dest in bytes, terminator included. The copying functions return 0 on success, else an
 * errno value (EINVAL for a null pointer or size 0, ERANGE when the result does not fit or the areas overlap), and
 * then leave an empty string in dest where dest can be written. The printing functions return the number of
 * characters written without the terminator, or -1.
 */

#ifdef __cplusplus
extern "C" {
#endif

/** Sets count bytes of dest to c. */
int memset_s(void* dest, size_t destMax, int c, size_t count);
/** Copies the string src. */
int strcpy_s(char* dest, size_t destMax, const char* src);
/** Copies at most count characters of src and terminates the result. */
int strncpy_s(char* dest, size_t destMax, const char* src, size_t count);
/** Appends the string src. */
int strcat_s(char* dest, size_t destMax, const char* src);

/** Prints; -1 and an empty dest when the text does not fit. */
int sprintf_s(char* dest, size_t destMax, const char* format, ...) __attribute__((format(printf, 3, 4)));
/** Prints at most count characters; -1 when the text is longer, dest then holds its first count characters. */
int snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
/** snprintf_s with an argument list. */
int vsnprintf_s(char* dest, size_t destMax, size_t count, const char* format, va_list args)
    __attribute__((format(printf, 4, 0)));

#ifdef __cplusplus
}
#endif

#endif
