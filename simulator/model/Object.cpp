#include "model/Object.h"

#include <algorithm>

namespace arraysim {
namespace {

bool isDecimal(const std::string& id)
{
    return !id.empty() && std::all_of(id.begin(), id.end(), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

bool IdLess::operator()(const std::string& a, const std::string& b) const
{
    const bool aDecimal = isDecimal(a);
    if (aDecimal != isDecimal(b)) {
        return aDecimal;
    }
    return aDecimal && a.size() != b.size() ? a.size() < b.size() : a < b;
}

std::string Object::value(const std::string& key, const std::string& fallback) const
{
    const auto found = values.find(key);
    return found == values.end() ? fallback : found->second;
}

} // namespace arraysim
