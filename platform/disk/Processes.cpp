#include "ovra/disk/Processes.h"

#include "ovra/disk/Files.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <set>

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

/** What a process has open; nothing where this one may not see it. */
std::set<std::string> openIn(const std::string& process, const std::string& root)
{
    const std::string folder = std::string(root).append("/proc/").append(process).append("/fd");
    std::set<std::string> open;
    try {
        for (const std::string& descriptor : namesThere(folder)) {
            open.insert(targetThere(std::string(folder).append("/").append(descriptor)));
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
    std::vector<std::string> openers;
    for (const std::string& process : processes(root)) {
        const std::string program = programOf(process, root);
        const std::set<std::string> open =
            isCaretaker(program) ? std::set<std::string>() : openIn(process, root);
        for (const std::string& node : nodes) {
            if (open.count("/dev/" + node) != 0) {
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
