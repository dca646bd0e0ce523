#include "host/DeviceUse.h"

#include "host/DeviceNames.h"
#include "host/FileContent.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace ovra::tessel {

namespace {

namespace fs = std::filesystem;

/** The names in a directory, in order; none when it cannot be read. */
std::vector<std::string> namesIn(const fs::path& directory)
{
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
         entry.increment(error)) {
        names.push_back(entry->path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

/** The directories in /sys/block of a disk and of its partitions. */
std::vector<fs::path> directoriesOf(const fs::path& disk)
{
    std::vector<fs::path> directories = {disk};
    for (const std::string& name : namesIn(disk)) {
        std::error_code error;
        if (fs::exists(disk / name / "partition", error)) {
            directories.push_back(disk / name);
        }
    }
    return directories;
}

} // namespace

std::vector<std::string> mountsOf(const BlockDevices& devices, const std::string& mountinfo)
{
    // 36 35 8:33 / /data rw,relatime shared:1 - ext4 /dev/sdc1 rw
    const size_t number = 2, mountPoint = 4;
    std::vector<std::string> mounts;
    std::istringstream lines(mountinfo);
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> words = wordsOf(line);
        if (words.size() <= mountPoint) {
            continue;
        }
        // Some file systems have a number of their own in place of the device's: their source tells.
        const auto separator = std::find(words.begin(), words.end(), "-");
        const std::string source = words.end() - separator > 2 ? separator[2] : std::string();
        for (const auto& [deviceNumber, name] : devices) {
            if (words[number] == deviceNumber || source == "/dev/" + name) {
                mounts.push_back(name + " is mounted on " + words[mountPoint]);
            }
        }
    }
    return mounts;
}

std::vector<std::string> swapsOn(const BlockDevices& devices, const std::string& swaps)
{
    std::vector<std::string> used;
    std::istringstream lines(swaps);
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> words = wordsOf(line);
        for (const auto& device : devices) {
            if (!words.empty() && words[0] == "/dev/" + device.second) {
                used.push_back(device.second + " is used as swap");
            }
        }
    }
    return used;
}

std::vector<std::string> usesOf(const std::string& disk, const std::string& root)
{
    BlockDevices devices;
    std::vector<std::string> holders;
    for (const fs::path& directory : directoriesOf(fs::path(root + "/sys/block") / disk)) {
        const std::string name = directory.filename();
        const std::vector<std::string> number = wordsOf(contentOf(directory / "dev"));
        devices[number.empty() ? name : number[0].substr(0, number[0].find('\n'))] = name;
        for (const std::string& holder : namesIn(directory / "holders")) {
            holders.push_back(std::string(name).append(" is held by ").append(holder));
        }
    }
    std::vector<std::string> uses = mountsOf(devices, contentOf(root + "/proc/self/mountinfo"));
    for (std::vector<std::string> more : {swapsOn(devices, contentOf(root + "/proc/swaps")), holders}) {
        uses.insert(uses.end(), more.begin(), more.end());
    }
    return uses;
}

} // namespace ovra::tessel
