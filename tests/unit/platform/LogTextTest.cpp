#include <Configuration.h>
#include <DatedName.h>
#include <LineText.h>

#include <gtest/gtest.h>

#include <fstream>
#include <string_view>

namespace ovra::log {
namespace {

std::string text(std::string_view raw)
{
    return escaped(raw, Within::Text);
}

TEST(LogTexts, ControlBytesAreEscaped)
{
    EXPECT_EQ("plain text: \"a\", \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x92\xBE",
              text("plain text: \"a\", \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x92\xBE"));
    EXPECT_EQ("a\\nb\\rc\\td", text("a\nb\rc\td"));
    EXPECT_EQ("\\x00\\x07\\x1B[31m\\x7F", text(std::string_view("\0\a\x1B[31m\x7F", 8)));
    EXPECT_EQ("C:\\\\new", text("C:\\new"));
    for (int byte = 0; byte < 256; ++byte) {
        for (const char c : text(std::string(1, static_cast<char>(byte)))) {
            EXPECT_TRUE(c >= 0x20 && c < 0x7F) << byte;
        }
    }
}

TEST(LogTexts, BytesThatAreNotUtf8AndCharactersThatViewersObeyAreEscaped)
{
    EXPECT_EQ("a\\xFFb", text("a\xFF"
                              "b"));
    EXPECT_EQ("\\xC3", text("\xC3"));
    EXPECT_EQ("\\xC0\\xAF", text("\xC0\xAF"));
    EXPECT_EQ("\\xC2\\x85", text("\xC2\x85"));          // next line
    EXPECT_EQ("\\xC2\\x9B", text("\xC2\x9B"));          // control sequence introducer
    EXPECT_EQ("\\xE2\\x80\\xA8", text("\xE2\x80\xA8")); // line separator
    EXPECT_EQ("\\xE2\\x80\\xAE", text("\xE2\x80\xAE")); // right-to-left override
    EXPECT_EQ("\xC2\xA0", text("\xC2\xA0"));
}

TEST(LogTexts, FieldsKeepToTheirPlace)
{
    EXPECT_EQ("my\\x20product", escaped("my product", Within::Word));
    EXPECT_EQ("-", escaped("", Within::Word));
    EXPECT_EQ("a\\\" result=\\\"0", escaped("a\" result=\"0", Within::Quotes));
    EXPECT_EQ("", escaped("", Within::Quotes));
}

TEST(LogConfiguration, IsReadFromItsEntries)
{
    const Configuration read = parseConfiguration(
        "[run_log]\nlevel = error\n[files]\nretention_days=7\ndirectory = /var/log/my logs\n");
    EXPECT_EQ(3, levelNumber(read.level));
    EXPECT_EQ(7, read.retentionDays);
    EXPECT_EQ("/var/log/my logs", read.directory);
    EXPECT_TRUE(read.problems.empty());
}

TEST(LogConfiguration, HasDefaultsForAllThatIsMissing)
{
    for (const char* nothing : {"", "\n", "; only a comment\n[run_log]\n[files]\n"}) {
        const Configuration read = parseConfiguration(nothing);
        EXPECT_EQ(1, levelNumber(read.level));
        EXPECT_EQ(30, read.retentionDays);
        EXPECT_EQ("", read.directory);
        EXPECT_TRUE(read.problems.empty());
    }
}

TEST(LogConfiguration, ReportsWhatItCannotUseAndKeepsTheDefault)
{
    const std::string longLine = "directory = /" + std::string(300, 'd');
    const Configuration read = parseConfiguration("[run_log]\nlevel = loud\ncolour = red\n[files]\n"
                                                  "retention_days = -1\ndirectory = logs\nnonsense\n" +
                                                  longLine + "\n");
    EXPECT_EQ(1, levelNumber(read.level));
    EXPECT_EQ(30, read.retentionDays);
    EXPECT_EQ("", read.directory);
    EXPECT_EQ(6U, read.problems.size());
    for (const char* days : {"", "x", "1 day", "99999999999", "1.5"}) {
        EXPECT_EQ(1U,
                  parseConfiguration(std::string("[files]\nretention_days = ") + days + "\n").problems.size())
            << days;
    }
}

TEST(LogConfiguration, TakesLinesOfUpTo198Bytes)
{
    const std::string directory = "/" + std::string(198 - std::string("directory=/").size(), 'd');
    EXPECT_EQ(directory, parseConfiguration("[files]\ndirectory=" + directory + "\n").directory);
    EXPECT_EQ(1U, parseConfiguration("[files]\ndirectory=" + directory + "d\n").problems.size());
}

TEST(LogConfiguration, AsShippedSaysWhatTheDefaultsAre)
{
    std::ifstream file(LOG_INI_FILE);
    std::string shipped;
    std::string uncommented;
    for (std::string line; std::getline(file, line);) {
        shipped += line + "\n";
        const bool entry = line.size() > 1 && line[0] == ';' && line[1] != ' ';
        uncommented += (entry ? line.substr(1) : line) + "\n";
    }
    ASSERT_NE(shipped, uncommented);
    for (const std::string& text : {shipped, uncommented}) {
        const Configuration read = parseConfiguration(text);
        EXPECT_TRUE(read.problems.empty()) << read.problems.at(0);
        EXPECT_EQ(levelNumber(Configuration().level), levelNumber(read.level));
        EXPECT_EQ(Configuration().retentionDays, read.retentionDays);
        EXPECT_TRUE(read.hasInterfaceLog);
        EXPECT_EQ(0U, read.mostMib + read.mostMibPerDay);
    }
    EXPECT_EQ("/var/log/ovra", parseConfiguration(uncommented).directory);
}

TEST(LogFileNames, CarryTheDateAndAreRecognisedExactly)
{
    EXPECT_EQ("Tessel_run_2026-01-02.log", datedName("Tessel_run_", {2026, 1, 2}));
    const auto name = parseName("Tessel_run_", "Tessel_run_2024-02-29.log");
    ASSERT_TRUE(name);
    EXPECT_TRUE((name->date == Date{2024, 2, 29}));
    EXPECT_EQ(12U, parseName("Tessel_run_", "Tessel_run_2026-01-02_12.log")->part);
    for (const char* other : {"Tessel_run_2026-01-02_1.log",
                              "Tessel_run_2026-01-02_0.log",
                              "Tessel_run_2026-01-02_02.log",
                              "Tessel_run_2026-01-02x2.log",
                              "Tessel_run_2026-01-02_2x.log",
                              "Tessel_run_2026-01-02_.log",
                              "Tessel_run_2026-01-02_99999999999.log",
                              "Tessel_run_2026-02-29.log",
                              "Tessel_run_2026-13-01.log",
                              "Tessel_run_2026-00-10.log",
                              "Tessel_run_2026-1-02.log",
                              "Tessel_run_2026-01.log",
                              "Tessel_run_2026-01-0a.log",
                              "Tessel_run_2026-01-02.log.1",
                              "Tessel_run_2026-01-02.txt",
                              "xTessel_run_2026-01-02.log",
                              "Tessel_run_2026_01_02.log",
                              "Tessel_run_",
                              "",
                              "Tessel_interface_2026-01-02.log",
                              "tessel_run_2026-01-02.log",
                              "Tessel_run_+026-01-02.log"}) {
        EXPECT_FALSE(parseName("Tessel_run_", other)) << other;
    }
}

} // namespace
} // namespace ovra::log
