#include "logs/LogFiles.h"

#include "kernel/Failure.h"

#include <ovra/disk/Files.h>
#include <ovra/log/LogAPI.h>
#include <tessel/DeviceManager.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <regex>
#include <tuple>

namespace tesselctl {

std::string logDirectoryInUse()
{
    // Logging starts with a device manager, and finds its directory then.
    const std::unique_ptr<CDeviceManager, decltype(&CDeviceManager::releaseInstance)> manager(
        CDeviceManager::getInstance(0, 0), CDeviceManager::releaseInstance);
    std::string directory = Log_Directory();
    if (directory.empty()) {
        throw Failure("no log directory can be written: name one in Tessel_API.ini beside the log library");
    }
    return directory;
}

std::map<std::string, std::vector<std::string>> logFilesIn(const std::string& directory)
{
    static const std::regex form(R"(Tessel_(run|interface|audit)_(\d{4}-\d\d-\d\d)(_(\d{1,9}))?\.log)");
    std::vector<std::tuple<std::string, unsigned long, std::string, std::string>> found;
    for (const std::string& name : ovra::disk::namesIn(directory)) {
        std::smatch parts;
        if (std::regex_match(name, parts, form)) {
            found.emplace_back(parts[2], parts[4].matched ? std::stoul(parts[4]) : 1, parts[1], name);
        }
    }
    std::sort(found.begin(), found.end());
    const std::string folder = (std::filesystem::path(directory) / "").string();
    std::map<std::string, std::vector<std::string>> files;
    for (const auto& [date, part, kind, name] : found) {
        files[kind].push_back(folder + name);
    }
    return files;
}

} // namespace tesselctl
