#include "watch/Secrets.h"

#include "base/Json.h"

#include <algorithm>

namespace arraysim {
namespace {

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

std::string withoutSecrets(const std::string& text)
{
    if (text.empty()) {
        return text;
    }
    Json::Value body;
    if (!readJson(text, body)) {
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
