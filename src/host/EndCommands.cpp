#include "host/EndCommands.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <sys/syscall.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace ovra::tessel {
namespace {

constexpr int MOST_LOOKS = 20; ///< one is enough but where something is being started

/** Stays this process, and no other one of the same number. */
class Process
{
public:
    // By number: the C library's header for these cannot be had from C++ everywhere.
    explicit Process(const std::string& number)
        : m_descriptor(static_cast<int>(syscall(SYS_pidfd_open, std::stoi(number), 0)))
    {
    }
    ~Process()
    {
        if (isThere()) {
            close(m_descriptor);
        }
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    bool isThere() const { return m_descriptor >= 0; }
    void send(int signal) const { syscall(SYS_pidfd_send_signal, m_descriptor, signal, nullptr, 0); }

private:
    const int m_descriptor;
};

using Tree = std::map<std::string, Process>;

std::vector<std::string> childrenOf(const std::string& task)
{
    std::ifstream words(task + "/children");
    std::vector<std::string> children;
    for (std::string child; words >> child;) {
        children.push_back(child);
    }
    return children;
}

/** True when it starts nothing more: stopped, dead, or in the kernel with the stop ahead of it. */
bool isHeld(const std::string& process)
{
    std::string line;
    std::getline(std::ifstream("/proc/" + process + "/stat"), line);
    const size_t name = line.rfind(") ");
    return name == std::string::npos || std::string("TtZXD").find(line[name + 2]) != std::string::npos;
}

/** Stops what a task has started, from the top, so that nothing is started while it is looked for. */
void stopChildrenOf(const std::string& task, Tree& tree)
{
    for (const std::string& child : childrenOf(task)) {
        const auto [found, isNew] = tree.try_emplace(child, child);
        const std::vector<std::string> now = isNew ? childrenOf(task) : std::vector<std::string>();
        if (isNew && (!found->second.isThere() || std::find(now.begin(), now.end(), child) == now.end())) {
            tree.erase(found); // it has ended, and its number may be anybody's
            continue;
        }
        found->second.send(SIGSTOP);
        std::error_code gone;
        for (const auto& thread : std::filesystem::directory_iterator("/proc/" + child + "/task", gone)) {
            stopChildrenOf(thread.path(), tree);
        }
    }
}

} // namespace

void endCommandsOf(pid_t thread)
{
    Tree tree;
    bool isWhole = false;
    for (int look = 0; !isWhole && look < MOST_LOOKS; ++look) {
        const size_t before = tree.size();
        stopChildrenOf("/proc/self/task/" + std::to_string(thread), tree);
        isWhole = tree.size() == before &&
                  std::all_of(tree.begin(), tree.end(), [](const auto& each) { return isHeld(each.first); });
        if (!isWhole) {
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
    }
    for (const auto& [number, process] : tree) {
        process.send(SIGKILL);
    }
}

} // namespace ovra::tessel
