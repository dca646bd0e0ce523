#include "wire/Answer.h"

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
    answer.status = error.code() == Code::sessionInvalid ? 401 : 200;
    answer.code = static_cast<int>(error.code());
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

std::string jsonText(const Json::Value& value)
{
    static const Json::StreamWriterBuilder builder = [] {
        Json::StreamWriterBuilder b;
        b["indentation"] = "";
        b["emitUTF8"] = true;
        return b;
    }();
    return Json::writeString(builder, value);
}

} // namespace arraysim
