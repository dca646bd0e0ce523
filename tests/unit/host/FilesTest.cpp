#include "support/Folder.h"

#include <ovra/disk/Files.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ovra::disk;

namespace {

TEST(AFile, HasItsValueWhenItsLineIsThere)
{
    const tessel_test::Folder folder;
    const std::string path = folder.path() + "/state";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int writer = open(path.c_str(), O_RDWR | O_CLOEXEC); // while it is open there is no end
    ASSERT_EQ(write(writer, "running\n", 8), 8);
    std::future<std::string> value = std::async(std::launch::async, &valueOf, path);
    EXPECT_EQ(value.wait_for(std::chrono::seconds(20)), std::future_status::ready) << "it waits for the end";
    close(writer);
    EXPECT_EQ(value.get(), "running");
}

TEST(AFile, OfWhichAPartIsWrittenIsNotWritten)
{
    const tessel_test::Folder folder;
    const std::string path = folder.write("delete", "");
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit one{1, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &one), 0);
    errno = 0;
    const bool isWritten = writeFile(path, "1\n");
    const int error = errno;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(isWritten);
    EXPECT_EQ(error, EIO);
    EXPECT_EQ(contentOf(path), "1");
}

} // namespace
