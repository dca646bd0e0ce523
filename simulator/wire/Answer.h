#ifndef SIMULATOR_WIRE_ANSWER_H
#define SIMULATOR_WIRE_ANSWER_H

#include "base/Codes.h"

#include <json/json.h>

#include <string>
#include <utility>
#include <vector>

namespace arraysim {

/** What the array answers: records or nothing, or an error object; headers only for the login. */
struct Answer
{
    int status = 200;
    int code = 0;
    std::string description;
    Json::Value data; ///< object: one record; array: one record an element; null: no data member
    std::vector<std::pair<std::string, std::string>> headers;

    static Answer records(Json::Value data);
    static Answer error(const ArrayError& error);

    /** The body as it goes over the wire. */
    std::string body() const;
};

} // namespace arraysim

#endif
