#ifndef TESSEL_EXPORT_H
#define TESSEL_EXPORT_H

/** @file
 * What the shared object shows. */

/** Marks what the shared object shows to the programs that link it. */
#define TESSEL_API __attribute__((visibility("default")))

#endif
