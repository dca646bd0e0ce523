#ifndef HOST_NEVERDESTROYED_H
#define HOST_NEVERDESTROYED_H

#include <new>

/**
 * The place of a global object that threads may still use when the process ends: it is made with the library
 * and never destroyed. The object itself is declared as usual, "extern Type NAME"; the place stands under its
 * symbol, so that whoever knows the object by that declaration finds an object there, and no reference.
 * @param symbol as the compiler spells it for the declaration
 * @param arguments of the constructor, in their brackets
 */
#define HOST_NEVER_DESTROYED(Type, NAME, symbol, arguments)                                                  \
    alignas(Type) unsigned char NAME##Place[sizeof(Type)] __asm__(symbol);                                   \
    namespace {                                                                                              \
    [[maybe_unused]] auto* const NAME##Made = new (NAME##Place) Type arguments;                              \
    }                                                                                                        \
    static_assert(true) // for the semicolon that follows

#endif
