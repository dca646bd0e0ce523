#include "logs/LogFiles.h"
#include "Folder.h"

#include <gtest/gtest.h>

namespace {

TEST(LogFiles, areFoundByTheirNamesTheOldestFirst)
{
    const tessel_test::Folder folder;
    for (const char* name :
         {"Tessel_run_2026-11-21.log", "Tessel_run_2026-11-20_10.log", "Tessel_run_2026-11-20_2.log",
          "Tessel_run_2026-11-20.log", "Tessel_interface_2026-11-20.log", "Tessel_audit_2026-11-19.log",
          "Tessel_run_2026-11-20.log.gz", "xTessel_run_2026-11-20.log", "Tessel_run_2026-1-20.log",
          "Tessel_other_2026-11-20.log", "Tessel_run_2026-11-20_1234567890.log",
          "Tessel_run_2026-11-20_.log"}) {
        folder.write(name, "");
    }
    const std::string in = folder.path() + "/";
    const auto files = tesselctl::logFilesIn(folder.path());
    EXPECT_EQ(files, tesselctl::logFilesIn(in));
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(files.at("run"), (std::vector<std::string>{
                                   in + "Tessel_run_2026-11-20.log", in + "Tessel_run_2026-11-20_2.log",
                                   in + "Tessel_run_2026-11-20_10.log", in + "Tessel_run_2026-11-21.log"}));
    EXPECT_EQ(files.at("interface"), std::vector<std::string>{in + "Tessel_interface_2026-11-20.log"});
    EXPECT_EQ(files.at("audit"), std::vector<std::string>{in + "Tessel_audit_2026-11-19.log"});
    EXPECT_TRUE(tesselctl::logFilesIn(folder.path() + "/none").empty());
}

} // namespace
