// What the audit writes of an event, and to the journal.

#include "Recorder.h"

#include "support/RecordingPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/reader.h>
#include <tessel/Audit.h>
#include <tessel/Exception.h>

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <sched.h>
#include <sstream>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

using namespace ovra::tessel;
using testing::HasSubstr;

namespace {

OperationEvent shown()
{
    OperationEvent event;
    event.operation = "ensureVisible";
    event.array = "192.0.2.7:8088";
    event.user = "admin";
    event.objects = {{"lun", "17", ""}, {"host", "3", "web\n\xff"}};
    event.initiator = "iqn.2026-01.example:web";
    event.isChange = true;
    event.isDone = true;
    event.seconds = 0.25;
    event.start = std::chrono::system_clock::from_time_t(1795252830) + std::chrono::milliseconds(45);
    event.process = 7;
    event.thread = 8;
    return event;
}

Json::Value parsed(const std::string& line)
{
    Json::Value value;
    std::istringstream stream(line);
    std::string errors;
    EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, &errors)) << line;
    return value;
}

} // namespace

TEST(Audit, SaysInOneLineWhoShowedWhatToWhomAndWhen)
{
    const std::string line = auditLine(shown());
    EXPECT_EQ(line.find('\n'), std::string::npos);
    EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c < 127; })) << line;
    const Json::Value value = parsed(line);
    EXPECT_EQ(value["time"], "2026-11-21T09:20:30.045Z");
    EXPECT_EQ(value["lun"], "17");
    EXPECT_EQ(value["host"], "3");
    EXPECT_EQ(value["initiator"], "iqn.2026-01.example:web");
    EXPECT_EQ(value["user"], "admin");
    EXPECT_EQ(value["array"], "192.0.2.7:8088");
    EXPECT_EQ(value["done"], true);
    EXPECT_EQ(value["seconds"], 0.25);
    EXPECT_EQ(value["code"], 0);
    EXPECT_FALSE(value.isMember("what"));
    EXPECT_FALSE(value.isMember("lockSeconds"));
}

TEST(Audit, NamesAllObjectsOfAKind)
{
    OperationEvent event = shown();
    event.objects = {{"lun", "17", "data"}, {"lun", "18", ""}, {"lun", "19", "logs"}};
    const Json::Value value = parsed(auditLine(event));
    EXPECT_EQ(value["lun"], "17, 18, 19");
    EXPECT_EQ(value["lunName"], "data, logs");
}

TEST(Audit, TellsOfTheWaitForTheLockAndOfTheFailure)
{
    OperationEvent event = shown();
    event.code = 1077949006;
    event.lockSeconds = 1.5;
    const Json::Value value = parsed(auditLine(event));
    EXPECT_EQ(value["code"], 1077949006);
    EXPECT_EQ(value["lockSeconds"], 1.5);
}

TEST(Audit, SaysOfAStepWhichCallItBelongsTo)
{
    HostEvent event;
    event.step = HostEvent::REMOVED;
    event.device = "/dev/sdc";
    event.operation = shown();
    event.operation.within = "LocalDisk::release";
    const Json::Value value = parsed(auditLine(event));
    EXPECT_EQ(value["step"], "removed");
    EXPECT_EQ(value["operation"], "LocalDisk::release");
    EXPECT_EQ(value["device"], "/dev/sdc");
    EXPECT_EQ(value["lun"], "17");
}

TEST(Audit, IsRefusedWhereTheLogLibraryHasNone)
{
    EXPECT_THROW(auditFile(), OvraAPIException) << "the recording libraries have no audit log";
}

namespace {

bool g_hasNoLibraries = false;

/** Ends with 0 when the journal's library, which cannot be opened, is named. */
[[noreturn]] void askForTheJournalWithoutItsLibrary()
{
    g_hasNoLibraries = true;
    try {
        auditJournal();
    } catch (const OvraAPIException& refused) {
        _exit(refused.what() == std::string("Exception:this host has no libsystemd.so.0! auditJournal") ? 0
                                                                                                        : 1);
    }
    _exit(2);
}

} // namespace

// In the place of the C library's.
extern "C" void* dlopen(const char* name, int mode) noexcept
{
    const auto own = reinterpret_cast<void* (*)(const char*, int)>(dlsym(RTLD_NEXT, "dlopen"));
    return g_hasNoLibraries ? nullptr : own(name, mode);
}

TEST(Audit, IsRefusedWhereTheHostHasNoJournal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // runs the program anew: one that has loaded it keeps it
    EXPECT_EXIT(askForTheJournalWithoutItsLibrary(), testing::ExitedWithCode(0), "");
}

TEST(Audit, ReachesTheJournalWithAFieldForEachMember)
{
    std::shared_ptr<Observer> journal;
    try {
        journal = auditJournal();
    } catch (const OvraAPIException& none) {
        GTEST_SKIP() << none.what();
    }
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) { // in a namespace of its own, whose journal is this test
        if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            _exit(2);
        }
        mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
        std::error_code error;
        if (mount("tmpfs", "/run", "tmpfs", 0, nullptr) != 0 ||
            !std::filesystem::create_directories("/run/systemd/journal", error)) {
            _exit(2);
        }
        const int receiver = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::string("/run/systemd/journal/socket").copy(address.sun_path, sizeof(address.sun_path) - 1);
        if (bind(receiver, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
            _exit(2);
        }
        journal->operationEnded(shown());
        OperationEvent read = shown();
        read.isChange = false;
        journal->operationEnded(read);
        std::string received(4096, '\0');
        const ssize_t length = recv(receiver, received.data(), received.size(), MSG_DONTWAIT);
        received.resize(length > 0 ? static_cast<size_t>(length) : 0);
        const bool isRight =
            received.find("\nTESSEL_LUN=17\n") != std::string::npos &&
            received.find("\nTESSEL_INITIATOR=iqn.2026-01.example:web\n") != std::string::npos &&
            received.find("PRIORITY=6\n") != std::string::npos &&
            recv(receiver, received.data(), 1, MSG_DONTWAIT) < 0;
        _exit(isRight ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    if (WEXITSTATUS(status) == 2) {
        GTEST_SKIP() << "no namespace with a /run of its own can be had here";
    }
    EXPECT_EQ(status, 0);
}
