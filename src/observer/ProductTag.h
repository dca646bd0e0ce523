#ifndef OBSERVER_PRODUCTTAG_H
#define OBSERVER_PRODUCTTAG_H

namespace ovra::tessel {

/** Names this SDK in every line and record of the logs. */
inline constexpr const char* PRODUCT_TAG = "Ovra-Tessel-API-linux-Cpp";

} // namespace ovra::tessel

#endif
