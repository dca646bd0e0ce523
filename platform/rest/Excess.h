#ifndef OVRA_REST_EXCESS_H
#define OVRA_REST_EXCESS_H

#include <cstddef>

namespace ovra::rest {

/** More of something than is taken of an answer. */
struct Excess
{
    const char* what = nullptr; ///< null: nothing is too large
    size_t size = 0;            ///< 0: not known
    size_t most = 0;
};

} // namespace ovra::rest

#endif
