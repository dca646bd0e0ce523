#include "export/NumberedLinks.h"

#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace arraysim {
namespace {

bool isNumbered(const fs::directory_entry& entry)
{
    return entry.is_directory() && entry.path().filename().string().rfind("lun_", 0) == 0;
}

/** The links that a directory of a target holds. */
std::vector<fs::path> linksIn(const fs::path& directory)
{
    std::vector<fs::path> links;
    for (const auto& entry : fs::directory_iterator(directory)) {
        if (entry.is_symlink()) {
            links.push_back(entry.path());
        }
    }
    return links;
}

bool linksTo(const fs::path& from, const fs::path& to)
{
    for (const auto& link : linksIn(from)) {
        std::error_code broken;
        if (fs::equivalent(link, to, broken)) {
            return true;
        }
    }
    return false;
}

} // namespace

fs::path numberedLink(const fs::path& in, const fs::path& to)
{
    if (fs::exists(in) && fs::exists(to)) {
        for (const auto& entry : fs::directory_iterator(in)) {
            if (isNumbered(entry) && linksTo(entry.path(), to)) {
                return entry.path();
            }
        }
    }
    return {};
}

void removeWithLinks(ConfigFs& config, const fs::path& directory)
{
    for (const auto& link : linksIn(directory)) {
        fs::remove(link);
    }
    config.removeDirectory(directory);
}

fs::path makeNextNumber(ConfigFs& config, const fs::path& in, int first)
{
    for (int number = first;; ++number) {
        fs::path next = in / ("lun_" + std::to_string(number));
        if (!fs::exists(next)) {
            config.makeDirectory(next);
            return next;
        }
    }
}

} // namespace arraysim
