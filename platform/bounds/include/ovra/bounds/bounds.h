#ifndef OVRA_BOUNDS_BOUNDS_H
#define OVRA_BOUNDS_BOUNDS_H

#include <stdarg.h>
#include <stddef.h>

/**
 * @file
 * Bounds-checked memory and string functions.
 *
 * destMax is the size of dest in bytes, terminator included. The copying functions return 0 on success, else
 * an errno value (EINVAL for a null pointer or size 0, ERANGE when the result does not fit or the areas
 * overlap), and then leave an empty string in dest where dest can be written. The printing functions return
 * the number of characters written without the terminator, or -1.
 */

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Sets bytes.
 * @param dest bytes to set.
 * @param destMax size of dest in bytes.
 * @param c value of each byte.
 * @param count how many bytes.
 * @return 0, or an errno value.
 */
int memset_s(void* dest, size_t destMax, int c, size_t count);
/**
 * Copies a string.
 * @param dest receives the copy.
 * @param destMax size of dest in bytes.
 * @param src string to copy.
 * @return 0, or an errno value.
 */
int strcpy_s(char* dest, size_t destMax, const char* src);
/**
 * Copies the beginning of a string and terminates it.
 * @param dest receives the copy.
 * @param destMax size of dest in bytes.
 * @param src string to copy.
 * @param count most characters to copy.
 * @return 0, or an errno value.
 */
int strncpy_s(char* dest, size_t destMax, const char* src, size_t count);
/**
 * Appends a string.
 * @param dest string to append to.
 * @param destMax size of dest in bytes.
 * @param src string to append.
 * @return 0, or an errno value.
 */
int strcat_s(char* dest, size_t destMax, const char* src);

/**
 * Prints; a text that does not fit leaves dest empty.
 * @param dest receives the text.
 * @param destMax size of dest in bytes.
 * @param format as for printf.
 * @return characters written without the terminator, or -1.
 */
int sprintf_s(char* dest, size_t destMax, const char* format, ...) __attribute__((format(printf, 3, 4)));
/**
 * Prints at most count characters; of a longer text dest holds the first count characters.
 * @param dest receives the text.
 * @param destMax size of dest in bytes.
 * @param count most characters to print.
 * @param format as for printf.
 * @return characters written without the terminator; -1 also when the text is longer.
 */
int snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
/**
 * snprintf_s with an argument list.
 * @param dest receives the text.
 * @param destMax size of dest in bytes.
 * @param count most characters to print.
 * @param format as for printf.
 * @param args arguments of the format.
 * @return as snprintf_s.
 */
int vsnprintf_s(char* dest, size_t destMax, size_t count, const char* format, va_list args)
    __attribute__((format(printf, 4, 0)));

#ifdef __cplusplus
}
#endif

#endif
