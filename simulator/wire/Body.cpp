#include "wire/Body.h"

#include "wire/Codes.h"
#include "wire/Target.h"

#include <algorithm>
#include <memory>

namespace arraysim {
namespace {

bool parse(const std::string& text, Json::Value& value, std::string& why)
{
    static const Json::CharReaderBuilder builder = [] {
        Json::CharReaderBuilder b;
        Json::CharReaderBuilder::strictMode(&b.settings_);
        b["stackLimit"] = 64;
        return b;
    }();
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    try {
        return reader->parse(text.data(), text.data() + text.size(), &value, &why);
    } catch (const std::exception& tooDeep) {
        why = tooDeep.what();
        return false;
    }
}

bool isSecret(const std::string& key)
{
    std::string lower(key);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 0x20 : c); });
    return lower.find("password") != std::string::npos || lower.find("secret") != std::string::npos ||
           lower.find("token") != std::string::npos || lower.find("cookie") != std::string::npos;
}

struct Span
{
    std::ptrdiff_t from;
    std::ptrdiff_t to;
};

void findSecrets(const Json::Value& value, std::vector<Span>& secrets)
{
    if (value.isObject()) {
        for (const auto& key : value.getMemberNames()) {
            if (isSecret(key)) {
                secrets.push_back({value[key].getOffsetStart(), value[key].getOffsetLimit()});
            } else {
                findSecrets(value[key], secrets);
            }
        }
    } else if (value.isArray()) {
        for (const auto& element : value) {
            findSecrets(element, secrets);
        }
    }
}

} // namespace

Json::Value parseBody(const std::string& text)
{
    Json::Value body;
    std::string why;
    if (!parse(text, body, why) || !body.isObject()) {
        throw ArrayError(Code::bodyMalformed, "The body of the request is not one JSON object.");
    }
    return body;
}

void allowMembers(const Json::Value& body, const std::set<std::string>& allowed)
{
    for (const auto& key : body.getMemberNames()) {
        if (allowed.count(key) == 0) {
            throw ArrayError(Code::memberUnknown, "The member \"" + printable(key) + "\" is not known here.");
        }
    }
}

std::string requiredText(const Json::Value& body, const std::string& key)
{
    if (!body.isMember(key)) {
        throw ArrayError(Code::memberMissing, "The member " + key + " is missing.");
    }
    if (!body[key].isString() || body[key].asString().empty()) {
        throw ArrayError(Code::memberInvalid, "The member " + key + " must be a text that is not empty.");
    }
    return body[key].asString();
}

int requiredNumber(const Json::Value& body, const std::string& key)
{
    if (!body.isMember(key)) {
        throw ArrayError(Code::memberMissing, "The member " + key + " is missing.");
    }
    if (!body[key].isInt()) {
        throw ArrayError(Code::memberInvalid, "The member " + key + " must be a whole number.");
    }
    return body[key].asInt();
}

std::string withoutSecrets(const std::string& text)
{
    if (text.empty()) {
        return text;
    }
    Json::Value body;
    std::string why;
    if (!parse(text, body, why)) {
        return "<" + std::to_string(text.size()) + " bytes that are not JSON>";
    }
    std::vector<Span> secrets;
    findSecrets(body, secrets);
    std::sort(secrets.begin(), secrets.end(), [](const Span& a, const Span& b) { return a.from > b.from; });
    std::string shown(text);
    for (const auto& secret : secrets) {
        shown.replace(static_cast<std::size_t>(secret.from),
                      static_cast<std::size_t>(secret.to - secret.from), "\"***\"");
    }
    return shown;
}

} // namespace arraysim
