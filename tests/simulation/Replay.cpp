// Does on the simulated kernel what was done on a real one, and says where they differ: tessel_replay TRACE.

#include "simulation/Kernel.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>

using namespace simulation;

namespace {

constexpr const char* HOST = "1";
constexpr Time UNTIL_REST = 30 * SECOND; // shorter than a session that is down is waited for
constexpr Time UNTIL_GIVEN_UP = 200 * SECOND;
constexpr const char* BLOCK = "/sys/block/";
constexpr const char* BY_ID = "/dev/disk/by-id";

/** "-" for nothing, and no line ends. */
std::string word(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
    return text.empty() ? "-" : text;
}

/** The WWN in page 0x83 of a unit. */
std::string wwnIn(const std::string& page)
{
    constexpr size_t HEADERS = 8;
    std::string text;
    for (size_t i = HEADERS; i < page.size(); ++i) {
        constexpr const char* DIGITS = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(page[i]);
        text += DIGITS[byte / 16];
        text += DIGITS[byte % 16];
    }
    return text;
}

class Replay
{
public:
    explicit Replay(std::istream& trace) : m_trace(trace)
    {
        m_kernel.add({HOST, [this] { return m_units; }, true});
    }

    /** Whether nothing differed. */
    bool run()
    {
        m_scheduler.start("replay", [this] {
            std::string line;
            while (std::getline(m_trace, line)) {
                take(line);
            }
            compare();
            m_isWhole = m_steps != 0;
        });
        m_scheduler.run();
        return m_isSame && m_isWhole;
    }

private:
    void take(const std::string& line)
    {
        std::istringstream words(line);
        std::string kind;
        words >> kind;
        if (kind == "do") {
            compare();
            m_step = line;
            m_seen.clear();
            std::string what;
            words >> what;
            perform(what, words);
            ++m_steps;
        } else if (kind == "see") {
            m_seen.insert(withOurNames(words));
        }
    }

    void perform(const std::string& what, std::istream& words)
    {
        unsigned number = 0;
        words >> number;
        Disk* const disk = m_kernel.at(std::string(HOST) + ":0:0:" + std::to_string(number));
        Time time = UNTIL_REST;
        if (what == "show" || what == "swap") {
            Unit unit;
            words >> unit.wwn >> unit.bytes;
            unit.id = unit.wwn;
            m_units[number] = unit;
        } else if (what == "hide") {
            m_units.erase(number);
        } else if (what == "scan") {
            m_kernel.scan(HOST);
        } else if (what == "delete" && disk != nullptr) {
            m_kernel.remove(*disk);
        } else if (what == "rescan" && disk != nullptr) {
            m_kernel.rescan(*disk);
        } else if (what == "down" || what == "up") {
            m_kernel.setUp(HOST, what == "up");
        } else if (what == "give-up") {
            time = UNTIL_GIVEN_UP;
        } else {
            differ("nobody can do that here");
        }
        m_scheduler.wait(m_scheduler.now() + time, [] { return false; });
    }

    /** The line of a disk, with the name that it has here: other disks have other names there. */
    std::string withOurNames(std::istream& words)
    {
        std::string number;
        std::string name;
        std::string rest;
        words >> number >> name;
        std::getline(words, rest);
        const Disk* const disk = m_kernel.at(std::string(HOST) + ":0:0:" + number);
        if (disk != nullptr) {
            const auto known = m_names.emplace(name, disk->name).first;
            if (known->second != disk->name) {
                differ(name + " was " + known->second + " here, and is " + disk->name);
            }
        }
        return number + rest;
    }

    std::string lineOf(const Disk& disk) const
    {
        const std::string folder = BLOCK + disk.name;
        const auto text = [&](const char* file) { return word(m_tree.read(folder + file).value_or("")); };
        const Unit unit = m_kernel.unitOf(disk);
        const bool isAnswering = m_kernel.isUp(disk.host);
        std::string links;
        for (const std::string& link : m_tree.namesIn(BY_ID)) {
            if (m_tree.targetOf(std::string(BY_ID) + "/" + link) == "../../" + disk.name) {
                links += "," + link;
            }
        }
        return std::to_string(disk.number) + " " + text("/device/state") + " " + text("/size") + " " +
               text("/device/wwid") + " " + wwnIn(m_tree.read(folder + "/device/vpd_pg83").value_or("")) +
               " " +
               (!isAnswering      ? "-"
                : unit.id.empty() ? "none"
                                  : unit.wwn) +
               " " + word(links);
    }

    void compare()
    {
        if (m_step.empty()) {
            return;
        }
        std::set<std::string> here;
        for (const auto& [name, disk] : m_kernel.disks()) {
            here.insert(lineOf(disk));
        }
        for (const std::string& line : m_seen) {
            if (here.count(line) == 0) {
                differ("the real kernel has " + line);
            }
        }
        for (const std::string& line : here) {
            if (m_seen.count(line) == 0) {
                differ("the simulated one has " + line);
            }
        }
    }

    void differ(const std::string& how)
    {
        std::cout << m_step << ": " << how << "\n";
        m_isSame = false;
    }

    std::istream& m_trace;
    Scheduler m_scheduler;
    Tree m_tree;
    Habits m_habits;
    Kernel m_kernel{m_scheduler, m_tree, m_habits};
    std::map<unsigned, Unit> m_units;
    std::map<std::string, std::string> m_names; ///< there, and here
    std::string m_step;
    std::set<std::string> m_seen; ///< after it
    unsigned m_steps = 0;
    bool m_isWhole = false; ///< it has come to the end
    bool m_isSame = true;
};

} // namespace

int main(int argc, char** argv)
{
    std::ifstream trace(argc == 2 ? argv[1] : "");
    if (!trace) {
        std::cerr << "usage: tessel_replay TRACE\n";
        return 2;
    }
    return Replay(trace).run() ? 0 : 1;
}
