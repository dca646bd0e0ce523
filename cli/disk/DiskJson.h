#ifndef DISK_DISKJSON_H
#define DISK_DISKJSON_H

#include "text/Display.h"

#include <json/value.h>

#include <string>

namespace tesselctl {

/** One path of a disk. */
inline Json::Value pathJson(const std::string& device, const std::string& address, const std::string& state)
{
    Json::Value json(Json::objectValue);
    json["device"] = validUtf8(device);
    json["address"] = validUtf8(address);
    json["state"] = validUtf8(state);
    return json;
}

} // namespace tesselctl

#endif
