#include "wire/Answer.h"

#include "base/Json.h"

namespace arraysim {

Answer Answer::records(Json::Value data)
{
    Answer answer;
    if (!data.empty()) {
        answer.data = std::move(data);
    }
    return answer;
}

Answer Answer::error(const ArrayError& error)
{
    Answer answer;
    answer.status = error.code() == Code::SESSION_INVALID ? 401 : 200;
    answer.code = wireCode(error.code());
    answer.description = error.what();
    return answer;
}

std::string Answer::body() const
{
    Json::Value root(Json::objectValue);
    if (!data.isNull()) {
        root["data"] = data;
    }
    root["error"]["code"] = code;
    root["error"]["description"] = description;
    return jsonText(root);
}

} // namespace arraysim
