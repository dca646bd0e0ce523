#include "ovra/disk/Processes.h"

#include "ovra/disk/Files.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <iterator>
#include <map>
#include <set>
#include <sys/stat.h>

namespace ovra::disk {
namespace {

/** Processes that open every disk for a moment, or hold the paths of every map. */
constexpr const char* CARETAKERS[] = {"systemd-udevd", "(udev-worker)", "udevd", "multipathd"};

/** The first namespace of process numbers, PROC_PID_INIT_INO of the kernel's proc_ns.h. */
constexpr const char* ALL_PROCESSES = "pid:[4026531836]";

std::string programOf(const std::string& process, const std::string& root)
{
    return valueThere(std::string(root).append("/proc/").append(process).append("/comm"));
}

bool isCaretaker(const std::string& program)
{
    return std::find(std::begin(CARETAKERS), std::end(CARETAKERS), program) != std::end(CARETAKERS);
}

/** The number of the block device behind a path, e.g. "8:33"; empty where there is none. */
std::string deviceNumber(const std::string& path)
{
    struct statx file = {};
    // A file on a server that does not answer is not waited for: it is no device.
    if (statx(AT_FDCWD, path.c_str(), AT_STATX_DONT_SYNC, STATX_TYPE, &file) != 0) {
        if (errno == ENOMEM) {
            throw Unreadable(path, errno);
        }
        return "";
    }
    return S_ISBLK(file.stx_mode)
               ? std::to_string(file.stx_rdev_major) + ":" + std::to_string(file.stx_rdev_minor)
               : "";
}

/**
 * The paths of what a process has open, and the numbers of the devices among it; nothing where this process
 * may not see it.
 */
std::set<std::string> openIn(const std::string& process, const std::string& root)
{
    const std::string folder = std::string(root).append("/proc/").append(process).append("/fd");
    std::set<std::string> open;
    try {
        for (const std::string& descriptor : namesThere(folder)) {
            const std::string link = std::string(folder).append("/").append(descriptor);
            const std::string path = targetThere(link);
            open.insert(path);
            if (path.compare(0, 1, "/") == 0) { // no socket, and no pipe
                open.insert(deviceNumber(link));
            }
        }
    } catch (const Unreadable& problem) {
        if (problem.error != EACCES && problem.error != EPERM) {
            throw;
        }
    }
    return open;
}

} // namespace

std::vector<std::string> processes(const std::string& root)
{
    std::vector<std::string> numbers = namesThere(root + "/proc/");
    numbers.erase(std::remove_if(numbers.begin(), numbers.end(),
                                 [](const std::string& name) {
                                     return name.find_first_not_of("0123456789") != std::string::npos;
                                 }),
                  numbers.end());
    return numbers;
}

std::vector<std::string> openersOf(const std::vector<std::string>& nodes, const std::string& root)
{
    std::map<std::string, std::string> numbers;
    for (const std::string& node : nodes) {
        numbers[node] = valueThere(std::string(root).append("/sys/class/block/").append(node).append("/dev"));
    }
    std::vector<std::string> openers;
    for (const std::string& process : processes(root)) {
        const std::string program = programOf(process, root);
        const std::set<std::string> open =
            isCaretaker(program) ? std::set<std::string>() : openIn(process, root);
        for (const std::string& node : nodes) {
            const std::string& number = numbers[node];
            const bool isNumberOpen = !number.empty() && open.count(number) != 0;
            if (isNumberOpen || open.count("/dev/" + node) != 0) {
                openers.push_back(std::string(node)
                                      .append(" is open in process ")
                                      .append(process)
                                      .append(" (")
                                      .append(program)
                                      .append(")"));
            }
        }
    }
    return openers;
}

bool mayRun(const std::string& program, const std::string& root)
{
    const std::vector<std::string> all = processes(root);
    return targetOf(root + "/proc/self/ns/pid") != ALL_PROCESSES ||
           std::any_of(all.begin(), all.end(),
                       [&](const std::string& process) { return programOf(process, root) == program; });
}

} // namespace ovra::disk
