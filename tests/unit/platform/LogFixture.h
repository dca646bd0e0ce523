#ifndef TESSEL_TESTS_LOGFIXTURE_H
#define TESSEL_TESTS_LOGFIXTURE_H

#include <LogService.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
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
