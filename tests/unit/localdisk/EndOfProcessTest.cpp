#include "host/CommandLines.h"
#include "host/Commands.h"
#include "localdisk/WriteWithin.h"

#include <ovra/disk/Files.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace ovra::tessel;

namespace {

/** Whether a thread beside this one is in a system call. */
bool isIn(long call)
{
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        const std::string at = ovra::disk::contentOf(task.path() / "syscall");
        if (task.path().filename() != std::to_string(gettid()) &&
            at.substr(0, at.find(' ')) == std::to_string(call)) {
            return true;
        }
    }
    return false;
}

/**
 * How a process ends that returns from main() while a thread hangs in a system call of the step. Not a death
 * test: that waits for all who have its pipes, a command among them.
 */
int endBeside(long call, const std::function<void()>& step)
{
    const pid_t process = fork();
    if (process == 0) {
        std::thread(step).detach();
        while (!isIn(call)) {
            std::this_thread::yield();
        }
        std::exit(0);
    }
    int status = -1;
    waitpid(process, &status, 0);
    return status;
}

} // namespace

/** A file that is read or written for ever. */
class AProcessEnds : public testing::Test
{
protected:
    AProcessEnds() : name("/tmp/hangs-" + std::to_string(getpid()))
    {
        setenv("PATH", "/usr/bin:/bin", 1); // other tests take it away
        mkfifo(name.c_str(), 0600);
        m_file = open(name.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
    }
    ~AProcessEnds() override
    {
        unlink(name.c_str());
        close(m_file);
    }
    void fill() const
    {
        while (write(m_file, "0", 1) == 1) {
        }
    }

    const std::string name;

private:
    int m_file = -1;
};

TEST_F(AProcessEnds, WhileADiskDoesNotAnswerARead)
{
    EXPECT_EQ(endBeside(SYS_read, [&] { ovra::disk::valueOf(name); }), 0);
    EXPECT_EQ(endBeside(SYS_read, [&] { ovra::disk::contentOf(name); }), 0);
}

TEST_F(AProcessEnds, WhileADiskDoesNotTakeAWrite)
{
    fill();
    EXPECT_EQ(endBeside(SYS_write, [&] { writeWithin(std::chrono::seconds(60), name, "1"); }), 0);
}

TEST_F(AProcessEnds, WhileAToolOfTheHostPrintsNothing)
{
    EXPECT_EQ(endBeside(SYS_read,
                        [&] {
                            std::string line;
                            CommandLines("cat " + name).next(line);
                        }),
              0);
    EXPECT_EQ(endBeside(SYS_read, [&] { printedBy("cat " + name); }), 0);
}
