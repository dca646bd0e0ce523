#ifndef TESSEL_TESTS_LOGFIXTURE_H
#define TESSEL_TESTS_LOGFIXTURE_H

#include <LogService.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace ovra::log {

constexpr auto INFO = spdlog::level::info;

/** A temporary folder with a log service of its own, whose clock the test sets. */
class LogFixture : public testing::Test
{
protected:
    LogFixture()
    {
        std::string path = (std::filesystem::temp_directory_path() / "tessel-log-XXXXXX").string();
        EXPECT_NE(nullptr, mkdtemp(path.data()));
        folder = path;
        setTime("2026-11-21 10:20:30", 45);
    }

    ~LogFixture() override
    {
        std::error_code ignored;
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(folder, ignored);
    }

    void setTime(const char* local, int milliseconds = 0)
    {
        tm calendar{};
        ASSERT_NE(nullptr, strptime(local, "%Y-%m-%d %H:%M:%S", &calendar));
        calendar.tm_isdst = -1;
        now = std::chrono::system_clock::from_time_t(mktime(&calendar)) +
              std::chrono::milliseconds(milliseconds);
    }

    static void writeFile(const std::filesystem::path& path, const std::string& text)
    {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }

    static std::string readFile(const std::filesystem::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static std::vector<std::string> linesOf(const std::filesystem::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    static std::vector<std::string> namesIn(const std::filesystem::path& directory)
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    /** What stands behind date, time, process and thread of a run-log line. */
    static std::string withoutOrigin(const std::string& line)
    {
        size_t position = 0;
        for (int blank = 0; blank < 4; ++blank) {
            position = line.find(' ', position) + 1;
        }
        return line.substr(position);
    }

    int start(const std::string& product = "product")
    {
        return service.start(product, iniFile().string(), logs().string());
    }

    /** A line that can be told from all others, and from a part of one. */
    static std::string numberedLine(int process, int number)
    {
        return std::to_string(process) + ":" + std::to_string(number) + ":" +
               std::string(static_cast<size_t>(number % 400), 'x') + ".";
    }

    /** Processes that each write so many numbered lines, and fail when one is dropped. */
    std::vector<pid_t> startWriters(int processes, int lines)
    {
        std::vector<pid_t> children;
        for (int process = 0; process < processes; ++process) {
            children.push_back(fork());
            if (children.back() != 0) {
                continue;
            }
            const bool isStarted = start() == 0;
            for (int number = 0; number < lines; ++number) {
                service.run(INFO, "p", numberedLine(process, number));
            }
            _exit(!isStarted ? 2 : service.dropped() == 0 ? 0 : 1);
        }
        return children;
    }

    static void expectEnded(const std::vector<pid_t>& children)
    {
        for (const pid_t child : children) {
            int status = -1;
            EXPECT_EQ(waitpid(child, &status, 0), child);
            EXPECT_EQ(status, 0);
        }
    }

    /** The process and the number of a run log's line; fails, with -1, for one that is not whole. */
    static std::pair<int, int> numbersOf(const std::string& line)
    {
        const std::string text = withoutOrigin(line).substr(std::string("INFO p ").size());
        int process = -1;
        int number = -1;
        const bool isRead = sscanf(text.c_str(), "%d:%d:", &process, &number) == 2;
        EXPECT_TRUE(isRead && text == numberedLine(process, number)) << line;
        return {process, number};
    }

    std::filesystem::path logs() const { return folder / "logs"; }
    std::filesystem::path state() const { return folder / "state"; }
    std::filesystem::path iniFile() const { return folder / "Tessel_API.ini"; }
    std::filesystem::path runLog(const std::string& date = "2026-11-21") const
    {
        return logs() / ("Tessel_run_" + date + ".log");
    }
    std::filesystem::path interfaceLog(const std::string& date = "2026-11-21") const
    {
        return logs() / ("Tessel_interface_" + date + ".log");
    }

    std::filesystem::path folder;
    std::chrono::system_clock::time_point now;
    LogService service{[this] { return now; }, [this] { return state().string(); }};
};

} // namespace ovra::log

#endif
