#ifndef SIMULATOR_MODEL_FIELDINPUT_H
#define SIMULATOR_MODEL_FIELDINPUT_H

#include "model/ObjectType.h"

#include <json/json.h>

#include <string_view>

namespace arraysim {

/**
 * A body's member as text, checked against its field: its JSON type, its bounds, its characters.
 * Throws ArrayError (MEMBER_INVALID).
 */
std::string inputText(const Field& field, const Json::Value& member);

/** Whether the bytes are UTF-8 without control characters. */
bool isPlainUtf8(std::string_view text);

} // namespace arraysim

#endif
