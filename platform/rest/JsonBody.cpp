#include "JsonBody.h"

#include "../text/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace ovra::rest {

namespace {

void appendEscaped(std::string& json, char character)
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
    std::array<char, 8> escape{};
    snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(character));
    json += escape.data();
}

} // namespace

std::string jsonString(const std::string& text)
{
    std::string json;
    // Room for the usual escapes: a secret is not left behind in a buffer that was outgrown.
    json.reserve(text.size() * 2 + 2);
    json += '"';
    for (std::string_view rest = text; !rest.empty();) {
        const size_t length = utf8SequenceLength(rest);
        if (length == 0) {
            json += "\\ufffd";
        } else if (length == 1) {
            appendEscaped(json, rest.front());
        } else {
            json += rest.substr(0, length);
        }
        rest.remove_prefix(std::max<size_t>(length, 1));
    }
    json += '"';
    return json;
}

void wipe(std::string& secret)
{
    explicit_bzero(secret.data(), secret.size());
    secret.clear();
}

JsonBody::~JsonBody()
{
    for (auto& member : m_members) {
        wipe(member.second);
    }
}

void JsonBody::add(const std::string& key, const std::string& value)
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

void JsonBody::put(const std::string& key, std::string json)
{
    for (auto& member : m_members) {
        if (member.first != key) {
            continue;
        }
        wipe(member.second);
        member.second = std::move(json);
        return;
    }
    m_members.emplace_back(key, std::move(json));
}

std::string JsonBody::text() const
{
    size_t size = 2;
    for (const auto& [key, json] : m_members) {
        size += key.size() * 6 + json.size() + 4;
    }
    std::string text;
    text.reserve(size);
    text += '{';
    for (const auto& [key, json] : m_members) {
        if (text.size() > 1) {
            text += ',';
        }
        text += jsonString(key);
        text += ':';
        text += json;
    }
    text += '}';
    return text;
}

} // namespace ovra::rest
