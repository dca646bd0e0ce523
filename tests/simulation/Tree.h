#ifndef SIMULATION_TREE_H
#define SIMULATION_TREE_H

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace simulation {

/** The files of /sys, /proc and /dev, in memory. A directory is what something stands in. */
class Tree
{
public:
    void put(const std::string& path, const std::string& content) { m_entries[path] = {content, false}; }
    /** @param target as it is read; one that begins with a slash must be there for the link to lead anywhere.
     */
    void link(const std::string& path, const std::string& target) { m_entries[path] = {target, true}; }
    /** Takes it away, with all that stands in it. */
    void erase(const std::string& path);

    std::optional<std::string> read(const std::string& path) const;
    std::optional<std::string> targetOf(const std::string& path) const;
    bool exists(const std::string& path) const;
    std::vector<std::string> namesIn(std::string path) const;

private:
    struct Entry
    {
        std::string text;
        bool isLink;
    };

    bool isDirectory(const std::string& path) const;

    std::map<std::string, Entry> m_entries;
};

} // namespace simulation

#endif
