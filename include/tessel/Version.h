#ifndef TESSEL_VERSION_H
#define TESSEL_VERSION_H

/** @file
 * The version of these headers, for the preprocessor. */

#define TESSEL_VERSION_MAJOR 1 ///< changes with the binary interface
#define TESSEL_VERSION_MINOR 0 ///< grows with additions
#define TESSEL_VERSION_PATCH 0 ///< grows with corrections

/** One number that grows with every version: 10203 for 1.2.3. */
#define TESSEL_VERSION (TESSEL_VERSION_MAJOR * 10000 + TESSEL_VERSION_MINOR * 100 + TESSEL_VERSION_PATCH)

#endif
