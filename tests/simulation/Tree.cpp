#include "simulation/Tree.h"

#include <iterator>

namespace simulation {
namespace {

constexpr char BEHIND_SLASH = '0'; // the character that follows it

} // namespace

void Tree::erase(const std::string& path)
{
    m_entries.erase(path);
    m_entries.erase(m_entries.lower_bound(path + "/"), m_entries.lower_bound(path + BEHIND_SLASH));
}

std::optional<std::string> Tree::read(const std::string& path) const
{
    const auto found = m_entries.find(path);
    return found == m_entries.end() || found->second.isLink ? std::nullopt
                                                            : std::make_optional(found->second.text);
}

std::optional<std::string> Tree::targetOf(const std::string& path) const
{
    const auto found = m_entries.find(path);
    return found == m_entries.end() || !found->second.isLink ? std::nullopt
                                                             : std::make_optional(found->second.text);
}

bool Tree::isDirectory(const std::string& path) const
{
    const auto first = m_entries.lower_bound(path + "/");
    return first != m_entries.end() && first->first.compare(0, path.size() + 1, path + "/") == 0;
}

bool Tree::exists(const std::string& path) const
{
    const auto found = m_entries.find(path);
    if (found != m_entries.end() && found->second.isLink && found->second.text[0] == '/') {
        return exists(found->second.text);
    }
    return found != m_entries.end() || isDirectory(path);
}

std::vector<std::string> Tree::namesIn(std::string path) const
{
    if (path.empty() || path.back() != '/') {
        path += '/';
    }
    std::vector<std::string> names;
    auto entry = m_entries.lower_bound(path);
    while (entry != m_entries.end() && entry->first.compare(0, path.size(), path) == 0) {
        const size_t end = entry->first.find('/', path.size());
        const std::string name = entry->first.substr(path.size(), end - path.size());
        if (names.empty() || names.back() != name) {
            names.push_back(name);
        }
        entry =
            end == std::string::npos ? std::next(entry) : m_entries.lower_bound(path + name + BEHIND_SLASH);
    }
    return names;
}

} // namespace simulation
