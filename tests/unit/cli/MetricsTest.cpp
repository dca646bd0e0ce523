#include "Folder.h"
#include "kernel/Failure.h"
#include "metrics/AuditTotals.h"
#include "metrics/Exposition.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/resource.h>

namespace {

using tesselctl::AuditTotals;
using tesselctl::Exposition;

std::string contentOf(const std::string& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Metrics, areWrittenAsCollectorsReadThem)
{
    Exposition exposition;
    exposition.gauge("disks", "Disks of the array.");
    exposition.value({}, 3);
    exposition.value({{"state", "running"}, {"host", "a\"b\\c\nd"}}, 0.25);
    exposition.summary("scans", "Scans.");
    exposition.total({{"result", "done"}}, {2, 1.5});
    EXPECT_EQ(exposition.text(), "# HELP disks Disks of the array.\n"
                                 "# TYPE disks gauge\n"
                                 "disks 3\n"
                                 "disks{state=\"running\",host=\"a\\\"b\\\\c\\nd\"} 0.25\n"
                                 "# HELP scans Scans.\n"
                                 "# TYPE scans summary\n"
                                 "scans_sum{result=\"done\"} 1.5\n"
                                 "scans_count{result=\"done\"} 2\n"
                                 "# EOF\n");
}

TEST(Metrics, keepEveryDigitOfANumber)
{
    Exposition exposition;
    exposition.gauge("bytes", "Bytes.");
    exposition.value({}, 123456789012345.0);
    EXPECT_NE(exposition.text().find("\nbytes 123456789012345\n"), std::string::npos);
}

TEST(Metrics, areTheSumsOfTheAuditLogs)
{
    const tessel_test::Folder folder;
    // Lines as auditFile() has written them, of two days.
    folder.write("Tessel_audit_2026-11-20.log",
                 R"({"code":0,"done":true,"operation":"ensureVisible","seconds":0.5})"
                 "\n"
                 R"({"code":0,"done":true,"operation":"ensureVisible","seconds":0.25})"
                 "\n"
                 R"({"code":7,"done":false,"operation":"ensureVisible","seconds":1})"
                 "\n"
                 R"({"code":0,"done":true,"operation":"attachLunToHost","seconds":2})"
                 "\n");
    folder.write("Tessel_audit_2026-11-21_2.log",
                 R"({"done":true,"operation":"scanLunAfterAttach","seconds":3,"lockSeconds":0.75})"
                 "\n"
                 R"({"operation":"LocalDisk::attach","step":"scanned","seconds":4,"lockSeconds":9})"
                 "\n"
                 R"({"operation":"scanLunAfterAttach","step":"scanned","seconds":5})"
                 "\n"
                 R"({"operation":"LocalDisk::attach","step":"found","seconds":6})"
                 "\n"
                 R"({"done":true,"operation":"LocalDisk::release","seconds":7,"lockSeconds":0.25})"
                 "\n"
                 R"({"done":true,"operation":"createLun","seconds":8})"
                 "\n");
    folder.write("Tessel_run_2026-11-21.log", R"({"done":true,"operation":"ensureVisible","seconds":100})"
                                              "\n");
    const AuditTotals totals = AuditTotals::of(folder.path());
    const auto expect = [](const AuditTotals::ByResult& all, const char* operation, const char* result,
                           unsigned long count, double seconds) {
        const auto found = all.find({operation, result});
        ASSERT_NE(found, all.end()) << operation << ' ' << result;
        EXPECT_EQ(found->second.count, count);
        EXPECT_DOUBLE_EQ(found->second.seconds, seconds);
    };
    EXPECT_EQ(totals.attaches.size(), 3U);
    expect(totals.attaches, "ensureVisible", "done", 2, 0.75);
    expect(totals.attaches, "ensureVisible", "failed", 1, 1);
    expect(totals.attaches, "attachLunToHost", "done", 1, 2);
    EXPECT_EQ(totals.scans.size(), 2U);
    expect(totals.scans, "scanLunAfterAttach", "done", 1, 3);
    expect(totals.scans, "LocalDisk::attach", "done", 1, 4);
    EXPECT_EQ(totals.removals.size(), 1U);
    expect(totals.removals, "LocalDisk::release", "done", 1, 7);
    EXPECT_EQ(totals.lockWaits.count, 2U);
    EXPECT_DOUBLE_EQ(totals.lockWaits.seconds, 1);
}

TEST(Metrics, leaveOutLinesThatNobodyHasWrittenSo)
{
    const tessel_test::Folder folder;
    folder.write("Tessel_audit_2026-11-20.log",
                 "no JSON\n[1]\n{\"operation\":{}}\n"
                 R"({"done":true,"operation":"ensureVisible","seconds":"long"})"
                 "\n7\n"
                 R"({"done":true,"operation":"ensureHidden","seconds":1})");
    const AuditTotals totals = AuditTotals::of(folder.path());
    ASSERT_EQ(totals.removals.size(), 1U);
    EXPECT_EQ(totals.removals.begin()->second.count, 1U);
    EXPECT_EQ(AuditTotals::of(folder.path() + "/none").lockWaits.count, 0U);
}

TEST(Metrics, stepIntoTheirFilesPlaceAsAWhole)
{
    const tessel_test::Folder folder;
    const std::string path = folder.write("metrics.prom", "the old ones", 0600);
    tesselctl::replaceFile(path, "the new ones\n");
    EXPECT_EQ(contentOf(path), "the new ones\n");
    namespace files = std::filesystem;
    EXPECT_EQ(files::status(path).permissions(), files::perms{0644});
    EXPECT_EQ(std::distance(files::directory_iterator(folder.path()), {}), 1);
}

TEST(Metrics, thatHaveNoRoomLeaveTheOldOnes)
{
    const tessel_test::Folder folder;
    const std::string path = folder.write("metrics.prom", "old");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit narrow = before;
    narrow.rlim_cur = 10;
    setrlimit(RLIMIT_FSIZE, &narrow);
    EXPECT_THROW(tesselctl::replaceFile(path, "more than ten bytes"), tesselctl::Failure);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(Metrics, leaveNothingWhereTheyCannotBeWritten)
{
    const tessel_test::Folder folder;
    const std::string occupied = folder.path() + "/metrics.prom";
    std::filesystem::create_directory(occupied);
    try {
        tesselctl::replaceFile(occupied, "text");
        FAIL();
    } catch (const tesselctl::Failure& failure) {
        EXPECT_EQ(failure.what(), occupied + " cannot be written: Is a directory");
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    EXPECT_THROW(tesselctl::replaceFile(folder.path() + "/none/metrics.prom", "text"), tesselctl::Failure);
}

} // namespace
