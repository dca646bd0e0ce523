#include "JsonBody.h"

#include <ovra/text/Utf8.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace ovra::rest {

namespace {

void appendEscaped(SecretText& json, char character)
{
    switch (character) {
    case '"':
        json += "\\\"";
        return;
    case '\\':
        json += "\\\\";
        return;
    case '\n':
        json += "\\n";
        return;
    case '\r':
        json += "\\r";
        return;
    case '\t':
        json += "\\t";
        return;
    default:
        break;
    }
    if (static_cast<unsigned char>(character) >= 0x20) {
        json += character;
        return;
    }
    std::array<char, 8> escape = {};
    snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(character));
    json += escape.data();
}

} // namespace

SecretText jsonString(std::string_view text)
{
    SecretText json = "\"";
    while (!text.empty()) {
        const size_t length = utf8Character(text).length;
        if (length == 0) {
            json += "\\ufffd";
        } else if (length == 1) {
            appendEscaped(json, text.front());
        } else {
            json += text.substr(0, length);
        }
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    json += '"';
    return json;
}

void JsonBody::add(const std::string& key, std::string_view value)
{
    put(key, jsonString(value));
}
void JsonBody::add(const std::string& key, bool value)
{
    put(key, value ? "true" : "false");
}
void JsonBody::add(const std::string& key, int value)
{
    put(key, std::to_string(value));
}
void JsonBody::add(const std::string& key, unsigned long value)
{
    put(key, std::to_string(value));
}
void JsonBody::add(const std::string& key, unsigned long long value)
{
    put(key, std::to_string(value));
}

void JsonBody::put(const std::string& key, SecretText json)
{
    for (auto& member : m_members) {
        if (member.first == key) {
            member.second = std::move(json);
            return;
        }
    }
    m_members.emplace_back(key, std::move(json));
}

SecretText JsonBody::text() const
{
    SecretText text = "{";
    for (const auto& [key, json] : m_members) {
        if (text.size() > 1) {
            text += ',';
        }
        text.append(jsonString(key)).append(":").append(json);
    }
    text += '}';
    return text;
}

} // namespace ovra::rest
