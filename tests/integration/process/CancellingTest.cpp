#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>

namespace tessel_test {
namespace {

class Cancellation : public testing::Test
{
protected:
    Cancellation()
    {
        std::string path = (std::filesystem::temp_directory_path() / "tessel-cancel-XXXXXX").string();
        EXPECT_NE(nullptr, mkdtemp(path.data()));
        logs = path;
        server.setHandler(&asArray);
    }
    ~Cancellation() override { std::filesystem::remove_all(logs); }

    std::vector<std::string> linesOf(const std::string& prefix) const
    {
        std::vector<std::string> lines;
        for (const auto& entry : std::filesystem::directory_iterator(logs)) {
            std::ifstream file(entry.path());
            for (std::string line;
                 entry.path().filename().string().rfind(prefix, 0) == 0 && std::getline(file, line);) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    static void expectWhole(const std::vector<std::string>& lines, const std::regex& form)
    {
        for (const std::string& line : lines) {
            EXPECT_TRUE(std::regex_match(line, form)) << line;
        }
    }

    static long withText(const std::vector<std::string>& lines, const std::string& text)
    {
        return std::count_if(lines.begin(), lines.end(),
                             [&](const std::string& line) { return line.find(text) != std::string::npos; });
    }

    std::filesystem::path logs;
    MisbehavingServer server;
};

TEST_F(Cancellation, OfAThreadInsideAnOperationLeavesNeitherALockNorHalfALine)
{
    ASSERT_EQ(0, statusOf({CANCELLING_PROGRAM, "127.0.0.1", std::to_string(server.port()), logs.string()}));

    const std::vector<std::string> run = linesOf("Tessel_run_");
    const std::vector<std::string> records = linesOf("Tessel_interface_");
    const std::string head = R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \d+ \d+ )";
    expectWhole(run, std::regex(head + "(INFO|WARN|ERROR) Ovra-[^ ]+ .*"));
    expectWhole(records,
                std::regex(head + R"((INFO|ERROR) product="[^"]+" type="1" .* result="\d+" extension="")"));
    for (const std::string operation : {"getLun", "createLun"}) {
        const long entered = withText(run, " enter " + operation + " successfully!");
        EXPECT_GE(entered, 20) << operation;
        EXPECT_EQ(entered, withText(records, "operation=\"" + operation + "\"")) << operation;
    }
}

} // namespace
} // namespace tessel_test
