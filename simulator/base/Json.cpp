#include "base/Json.h"

#include "base/Codes.h"
#include "base/Text.h"

#include <memory>

namespace arraysim {
bool readJson(const std::string& text, Json::Value& value)
{
    static const Json::CharReaderBuilder builder = [] {
        Json::CharReaderBuilder b;
        Json::CharReaderBuilder::strictMode(&b.settings_);
        b["stackLimit"] = 64;
        return b;
    }();
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    std::string why;
    try {
        return reader->parse(text.data(), text.data() + text.size(), &value, &why);
    } catch (const std::exception&) {
        return false; // nested too deeply
    }
}

Json::Value parseBody(const std::string& text)
{
    Json::Value body;
    if (!readJson(text, body) || !body.isObject()) {
        throw ArrayError(Code::BODY_MALFORMED, "The body of the request is not one JSON object.");
    }
    return body;
}

void allowMembers(const Json::Value& body, const std::set<std::string>& allowed)
{
    for (const auto& key : body.getMemberNames()) {
        if (allowed.count(key) == 0) {
            throw ArrayError(Code::MEMBER_UNKNOWN,
                             "The member \"" + printable(key) + "\" is not known here.");
        }
    }
}

std::string requiredText(const Json::Value& body, const std::string& key)
{
    if (!body.isMember(key)) {
        throw ArrayError(Code::MEMBER_MISSING, "The member " + key + " is missing.");
    }
    if (!body[key].isString() || body[key].asString().empty()) {
        throw ArrayError(Code::MEMBER_INVALID, "The member " + key + " must be a text that is not empty.");
    }
    return body[key].asString();
}

int requiredNumber(const Json::Value& body, const std::string& key)
{
    if (!body.isMember(key)) {
        throw ArrayError(Code::MEMBER_MISSING, "The member " + key + " is missing.");
    }
    if (!body[key].isInt()) {
        throw ArrayError(Code::MEMBER_INVALID, "The member " + key + " must be a whole number.");
    }
    return body[key].asInt();
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

unsigned numberIn(const Json::Value& body, const char* key, unsigned otherwise)
{
    if (!body.isMember(key)) {
        return otherwise;
    }
    const int value = requiredNumber(body, key);
    if (value < 0) {
        throw ArrayError(Code::MEMBER_INVALID, std::string("The member ") + key + " must not be negative.");
    }
    return static_cast<unsigned>(value);
}

std::string textIn(const Json::Value& body, const char* key, const std::string& otherwise)
{
    return body.isMember(key) ? requiredText(body, key) : otherwise;
}

} // namespace arraysim
