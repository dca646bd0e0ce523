#include "watch/Secrets.h"

#include "base/Codes.h"
#include "base/Json.h"
#include "model/ObjectType.h"
#include "wire/Query.h"

#include <algorithm>
#include <set>

namespace arraysim {
namespace {

constexpr const char* HIDDEN = "***";
constexpr std::size_t LONGEST_SHOWN = 4096;
constexpr std::size_t LONGEST_READ = 64UL * 1024;

/** The members of bodies and the keys of filters that are known, and those of them whose values are shown. */
struct Known
{
    std::set<std::string> all{
        "ID", "TYPE", "PARENTID", "PARENTTYPE", "ASSOCIATEOBJTYPE", "ASSOCIATEOBJID", "username", "scope"};
    std::set<std::string> harmless = all;

    Known()
    {
        for (const ObjectType* type : objectTypes()) {
            for (const auto& field : type->fields) {
                all.insert(field.key);
                if (!field.isSecret && (!field.isTransient || field.wire != Wire::TEXT)) {
                    harmless.insert(field.key);
                }
            }
        }
        all.insert("password");
    }
};

const Known& known()
{
    static const Known members;
    return members;
}

bool isHarmless(const Condition& condition)
{
    return known().harmless.count(condition.key) != 0;
}

bool isHarmlessQuery(const Target& target)
{
    static const std::set<std::string> parameters{"filter",           "range",         "TYPE", "ID",
                                                  "ASSOCIATEOBJTYPE", "ASSOCIATEOBJID"};
    return std::all_of(target.parameters.begin(), target.parameters.end(), [](const auto& parameter) {
        if (parameter.first != "filter") {
            return parameters.count(parameter.first) != 0;
        }
        const auto conditions = parseFilter(parameter.second);
        return std::all_of(conditions.begin(), conditions.end(), isHarmless);
    });
}

struct Span
{
    std::ptrdiff_t from;
    std::ptrdiff_t to;
};

} // namespace

std::string shownTarget(const std::string& target, const HoldsSecret& holdsSecret)
{
    if (target.empty() || target[0] != '/' || holdsSecret(target)) {
        return HIDDEN;
    }
    try {
        if (isHarmlessQuery(parseTarget(target))) {
            return target;
        }
    } catch (const ArrayError&) {
        // Not even the array could read it.
    }
    const std::size_t mark = target.find('?');
    return mark == std::string::npos ? HIDDEN : target.substr(0, mark + 1) + HIDDEN;
}

std::string shownBody(const std::string& body, const HoldsSecret& holdsSecret)
{
    if (body.empty()) {
        return body;
    }
    Json::Value members;
    if (body.size() > LONGEST_READ || !readJson(body, members) || !members.isObject()) {
        return sizeAlone(body);
    }
    std::vector<Span> secrets;
    for (const auto& key : members.getMemberNames()) {
        const Json::Value& value = members[key];
        if (known().all.count(key) == 0) {
            return sizeAlone(body);
        }
        const bool shown = known().harmless.count(key) != 0 && !value.isObject() && !value.isArray();
        if (!shown || (value.isString() && holdsSecret(value.asString()))) {
            secrets.push_back({value.getOffsetStart(), value.getOffsetLimit()});
        }
    }
    std::sort(secrets.begin(), secrets.end(), [](const Span& a, const Span& b) { return a.from > b.from; });
    std::string shown(body);
    for (const auto& secret : secrets) {
        shown.replace(static_cast<std::size_t>(secret.from),
                      static_cast<std::size_t>(secret.to - secret.from), std::string("\"") + HIDDEN + "\"");
    }
    if (holdsSecret(shown)) {
        return sizeAlone(body);
    }
    return shown.size() <= LONGEST_SHOWN ? shown : shown.substr(0, LONGEST_SHOWN) + "... " + sizeAlone(body);
}

std::string sizeAlone(const std::string& body)
{
    return body.empty() ? body : "<" + std::to_string(body.size()) + " bytes>";
}

} // namespace arraysim
