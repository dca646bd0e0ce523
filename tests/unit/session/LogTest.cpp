// The run log's entry point, and the place of its configuration.

#include "session/Log.h"
#include "support/RecordingPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/mman.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

using namespace ovra::tessel;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RunLog : public testing::Test
{
protected:
    RunLog() { platform.reset(); }

    RecordingPlatform& platform = RecordingPlatform::get();
};

TEST_F(RunLog, WritesEachLevelByItsOwnFunctionUnderTheProductTag)
{
    COMMLOG(OS_LOG_DEBUG, "a %d", 1);
    COMMLOG(OS_LOG_INFO, "b %s", "x");
    COMMLOG(OS_LOG_WARN, "c");
    COMMLOG(OS_LOG_ERROR, "%%");
    EXPECT_THAT(platform.journal(), ElementsAre("debug: a 1", "info: b x", "warn: c", "error: %"));
    EXPECT_THAT(platform.tags(), testing::Each("Ovra-Tessel-API-linux-Cpp"));
    EXPECT_THAT(platform.tags(), testing::SizeIs(4));
}

TEST_F(RunLog, WritesATextOf512CharactersOnce)
{
    const std::string text(512, 'x');
    COMMLOG(OS_LOG_ERROR, "%s", text.c_str());
    EXPECT_THAT(platform.journal(), ElementsAre("error: " + text));
}

TEST_F(RunLog, WritesALongerTextCutOnceAtInfoAndOnceAtItsLevel)
{
    const std::string text(512, 'x');
    COMMLOG(OS_LOG_ERROR, "%sy", text.c_str());
    COMMLOG(OS_LOG_INFO, "%s and much more", text.c_str());
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: " + text, "error: " + text, "info: " + text, "info: " + text));
}

TEST_F(RunLog, WritesNothingAtOtherLevelsButTheCutText)
{
    const auto level4 = static_cast<OS_LOGLEVEL>(4);
    COMMLOG(level4, "text");
    COMMLOG(static_cast<OS_LOGLEVEL>(-1), "text");
    COMMLOG(static_cast<OS_LOGLEVEL>(1000), "text");
    EXPECT_THAT(platform.journal(), IsEmpty());
    const std::string text(513, 'x');
    COMMLOG(level4, "%s", text.c_str());
    EXPECT_THAT(platform.journal(), ElementsAre("info: " + text.substr(0, 512)));
}

TEST_F(RunLog, MayBeWrittenByManyThreads)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([i] {
            for (int n = 0; n < 100; ++n) {
                COMMLOG(OS_LOG_INFO, "thread %d", i);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(platform.lines("info: thread 3"), testing::SizeIs(100));
}

// Finding the log library.

/** findModuleDirectory over a made-up listing; "-" when it finds none and leaves dir as it was. */
std::string foundIn(const std::string& listing, unsigned int dirSize = 1024)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> maps(std::tmpfile(), std::fclose);
    std::fwrite(listing.data(), 1, listing.size(), maps.get());
    std::rewind(maps.get());
    char dir[1024] = "as it was";
    if (findModuleDirectory(maps.get(), "libOvraLogAPI.so", dir, dirSize) != 0) {
        return std::strcmp(dir, "as it was") == 0 ? "-" : std::string("changed to ") + dir;
    }
    return dir;
}

TEST(ModuleDirectory, IsNotKnownToAProcessWithoutDescriptors)
{
    rlimit before = {};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none = {0, before.rlim_max};
    char dir[1024] = "as it was";
    setrlimit(RLIMIT_NOFILE, &none);
    const int result = GetModuleFilePath("libc.so", dir, sizeof(dir));
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(result, -1);
    EXPECT_STREQ(dir, "as it was");
}

const std::string MAP = "7f8a4c000000-7f8a4c021000 r-xp 00000000 08:01 1311 ";
const std::string DATA = "7f8a4c021000-7f8a4c022000 r--p 00000000 08:01 1311 ";

TEST(ModuleDirectory, IsThatOfTheExecutableMappingThatNamesTheModule)
{
    EXPECT_EQ(foundIn(MAP + "/usr/lib64/libOvraLogAPI.so\n"), "/usr/lib64");
    EXPECT_EQ(foundIn(MAP + "/usr/lib/libc.so.6\n" + MAP + "                  /opt/a b/libOvraLogAPI.so.1\n"),
              "/opt/a b");
    EXPECT_EQ(foundIn(MAP + "/usr/lib64/libOvraLogAPI.so"), "/usr/lib64") << "the last line without its end";
}

TEST(ModuleDirectory, IsNotTakenFromAMappingThatIsNotExecutable)
{
    EXPECT_EQ(foundIn(DATA + "/usr/lib64/libOvraLogAPI.so\n"), "-");
    EXPECT_EQ(foundIn(DATA + "/one/libOvraLogAPI.so\n" + MAP + "/two/libOvraLogAPI.so\n"), "/two");
}

TEST(ModuleDirectory, IsNotFoundInOtherLines)
{
    EXPECT_EQ(foundIn(""), "-");
    EXPECT_EQ(foundIn("\n\n"), "-");
    EXPECT_EQ(foundIn(MAP + "/usr/lib/libc.so.6\n" + MAP + "[vdso] libOvraLogAPI.so\n"), "-");
}

TEST(ModuleDirectory, IsThatOfTheFirstLineThatQualifies)
{
    EXPECT_EQ(foundIn(MAP + "/one/libOvraLogAPI.so\n" + MAP + "/two/libOvraLogAPI.so\n"), "/one");
    EXPECT_EQ(foundIn(MAP + "/libOvraLogAPI.so\n" + MAP + "/two/libOvraLogAPI.so\n"), "-");
}

TEST(ModuleDirectory, IsNotTheRootDirectory)
{
    EXPECT_EQ(foundIn(MAP + "/libOvraLogAPI.so\n"), "-");
}

TEST(ModuleDirectory, HasToFitWithItsTerminator)
{
    EXPECT_EQ(foundIn(MAP + "/usr/lib64/libOvraLogAPI.so\n", 11), "/usr/lib64");
    EXPECT_EQ(foundIn(MAP + "/usr/lib64/libOvraLogAPI.so\n", 10), "-");
}

TEST(ModuleDirectory, IsNotMadeOfALineThatIsTooLong)
{
    const std::string deep = "/" + std::string(1100, 'd');
    EXPECT_EQ(foundIn(MAP + deep + "/libOvraLogAPI.so\n"), "-");
    EXPECT_EQ(foundIn(MAP + deep + "/libOvraLogAPI.so\n" + MAP + "/two/libOvraLogAPI.so\n"), "/two");
}

TEST(ModuleDirectory, OfThisProcessIsReadFromItsOwnMappings)
{
    char dir[1024] = "as it was";
    EXPECT_EQ(GetModuleFilePath("libstdc++.so", dir, sizeof(dir)), 0);
    EXPECT_EQ(dir[0], '/');
    EXPECT_EQ(std::strchr(dir, '\n'), nullptr);
    std::strcpy(dir, "as it was");
    EXPECT_EQ(GetModuleFilePath("no such module", dir, sizeof(dir)), -1);
    EXPECT_STREQ(dir, "as it was");
}

/** An executable mapping of a file named like the log library, in a folder of its own. */
class MappedModule
{
public:
    MappedModule()
    {
        folder = testing::TempDir() + "moduleXXXXXX";
        EXPECT_NE(mkdtemp(folder.data()), nullptr);
        m_file = folder + "/libOvraLogAPI.so";
        const int fd = open(m_file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        EXPECT_EQ(ftruncate(fd, SIZE), 0);
        m_mapping = mmap(nullptr, SIZE, PROT_READ | PROT_EXEC, MAP_PRIVATE, fd, 0);
        EXPECT_NE(m_mapping, MAP_FAILED);
        close(fd);
    }
    ~MappedModule()
    {
        munmap(m_mapping, SIZE);
        unlink(m_file.c_str());
        rmdir(folder.c_str());
    }
    MappedModule(const MappedModule&) = delete;
    MappedModule& operator=(const MappedModule&) = delete;

    std::string folder;

private:
    static constexpr size_t SIZE = 4096;
    std::string m_file;
    void* m_mapping = nullptr;
};

TEST_F(RunLog, IsConfiguredBesideTheLogLibrary)
{
    const MappedModule module;
    char dir[1024] = {};
    getCurrentPath(dir, sizeof(dir));
    EXPECT_EQ(dir, module.folder);
    EXPECT_EQ(LOG_INIT(), 0);
    EXPECT_THAT(platform.journal(),
                ElementsAre("LogInit " + module.folder + "/Tessel_API.ini -1 " + module.folder + "/logs/"));
    EXPECT_THAT(platform.tags(), ElementsAre("Ovra-Tessel-API-linux-Cpp"));
}

TEST_F(RunLog, IsLeftToTheLogLibraryWhenThatIsNotFound)
{
    char dir[16] = "as it was";
    getCurrentPath(dir, sizeof(dir));
    EXPECT_STREQ(dir, "as it was");
    EXPECT_EQ(LOG_INIT(), 0);
    EXPECT_THAT(platform.journal(), ElementsAre("LogInit /Tessel_API.ini -1 /logs/"));
}

TEST_F(RunLog, ReportsWhetherTheLibraryStartedAndWhatItEndedWith)
{
    platform.logInitResult = 5;
    EXPECT_EQ(LOG_INIT(), -1);
    platform.logFiniResult = 9;
    EXPECT_EQ(LOG_EXIT(), 9);
    EXPECT_EQ(platform.journal().back(), "LogFini");
}

} // namespace
