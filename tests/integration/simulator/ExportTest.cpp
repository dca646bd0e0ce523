#include "FakeConfigFs.h"

#include "base/Json.h"
#include "export/DataCopy.h"
#include "export/IscsiExport.h"
#include "model/Operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <future>
#include <iterator>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

using namespace arraysim;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

constexpr const char* IQN = "iqn.2026-01.example:target";
constexpr const char* HOST_A = "iqn.2026-01.example:a";
constexpr const char* HOST_B = "iqn.2026-01.example:b";
constexpr std::uintmax_t GIB = 1ULL << 30;

fs::path temporary()
{
    std::string name = testing::TempDir() + "simulator-export-XXXXXX";
    return ::mkdtemp(name.data());
}

/** An array whose disks are shown through a tree in a temporary folder. */
class Shown
{
public:
    Shown(ConfigFs& config, const fs::path& state)
        : m_journal((state / "log").string(), false), m_store((state / "array.db").string()), world(m_store),
          files(state / "disks"), m_export(world, m_journal, config, IQN, files)
    {
    }

    std::string make(Type type, const std::string& members)
    {
        const auto lock = world.lock();
        return createObject(world, objectType(type), parseBody(members), {})["ID"].asString();
    }
    void link(Type owner, const std::string& ownerId, Type member, const std::string& memberId)
    {
        const auto lock = world.lock();
        World::Transaction transaction(world);
        associate(world, *relationBetween(owner, member), ownerId, memberId);
        transaction.commit();
    }
    void unlink(Type owner, const std::string& ownerId, Type member, const std::string& memberId)
    {
        const auto lock = world.lock();
        World::Transaction transaction(world);
        dissociate(world, *relationBetween(owner, member), ownerId, memberId);
        transaction.commit();
    }
    void remove(Type type, const std::string& id)
    {
        const auto lock = world.lock();
        deleteObject(world, objectType(type), id);
    }
    std::string lun(const std::string& name, std::uintmax_t bytes = 1 << 20)
    {
        return make(Type::LUN, R"({"PARENTID":"0","NAME":")" + name + R"(","CAPACITY":)" +
                                   std::to_string(bytes / 512) + "}");
    }
    std::string snapshot(const std::string& lunId, const std::string& name)
    {
        return make(Type::SNAPSHOT, R"({"PARENTID":")" + lunId + R"(","NAME":")" + name + R"("})");
    }
    /** A LUN group that the initiator sees. @return its ID */
    std::string groupFor(const std::string& initiator)
    {
        const std::string name = R"({"NAME":")" + initiator + R"("})";
        const std::string group = make(Type::LUN_GROUP, name);
        const std::string hosts = make(Type::HOST_GROUP, name);
        const std::string view = make(Type::MAPPING_VIEW, name);
        const std::string host =
            make(Type::HOST,
                 R"({"NAME":")" + initiator + R"(","OPERATIONSYSTEM":0,"PARENTID":")" + hosts + R"("})");
        make(Type::ISCSI_INITIATOR, R"({"ID":")" + initiator + R"(","PARENTID":")" + host + R"("})");
        link(Type::MAPPING_VIEW, view, Type::LUN_GROUP, group);
        link(Type::MAPPING_VIEW, view, Type::HOST_GROUP, hosts);
        return group;
    }
    std::string storeOf(const std::string& disk) const { return "tessel_" + world.deviceId() + "_" + disk; }
    fs::path file(const std::string& disk) const { return files / disk; }

private:
    Journal m_journal;
    Store m_store;

public:
    World world;
    const fs::path files;

private:
    IscsiExport m_export;
};

void put(const fs::path& file, off_t at, const std::string& text)
{
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(::pwrite(descriptor, text.data(), text.size(), at), static_cast<ssize_t>(text.size()));
    ::close(descriptor);
}

std::string get(const fs::path& file, off_t at, std::size_t size)
{
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    std::string text(size, '\0');
    EXPECT_EQ(::pread(descriptor, text.data(), size, at), static_cast<ssize_t>(size));
    ::close(descriptor);
    return text;
}

/** What a file takes on its file system. */
std::uintmax_t allocated(const fs::path& file)
{
    struct stat status;
    EXPECT_EQ(::stat(file.c_str(), &status), 0);
    return static_cast<std::uintmax_t>(status.st_blocks) * 512;
}

std::string contents(const fs::path& file)
{
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class SimulatorExport : public testing::Test
{
protected:
    SimulatorExport() : root(temporary()), config(root / "config", IQN)
    {
        fs::create_directories(root / "state");
    }
    ~SimulatorExport() override { fs::remove_all(root); }

    const fs::path root;
    FakeConfigFs config;
};

TEST_F(SimulatorExport, AStoreIsNamedForItsArrayAndShowsItsWwn)
{
    Shown array(config, root / "state");
    array.link(Type::LUN_GROUP, array.groupFor(HOST_A), Type::LUN, array.lun("one"));
    const std::string store = array.storeOf("lun_1");
    EXPECT_THAT(config.seenBy(HOST_A), ElementsAre(store));
    EXPECT_EQ(ConfigFs::read(config.store(store) / "enable"), "1");
    EXPECT_EQ(ConfigFs::read(config.store(store) / "wwn" / "company_id"), "0x001405");
    EXPECT_EQ(ConfigFs::read(config.store(store) / "control"),
              "fd_dev_name=" + array.file("lun_1").string() + ",fd_dev_size=1048576");
    EXPECT_EQ(ConfigFs::read(config.group() / "acls" / HOST_A / "lun_1" / "write_protect"), "0");
}

TEST_F(SimulatorExport, WhatIsHiddenGoesAndWhatAnotherInitiatorSeesStays)
{
    Shown array(config, root / "state");
    const std::string a = array.groupFor(HOST_A);
    const std::string b = array.groupFor(HOST_B);
    const std::string lun = array.lun("one");
    array.link(Type::LUN_GROUP, a, Type::LUN, lun);
    array.link(Type::LUN_GROUP, b, Type::LUN, lun);
    array.unlink(Type::LUN_GROUP, a, Type::LUN, lun);
    EXPECT_THAT(config.seenBy(HOST_A), IsEmpty());
    EXPECT_THAT(config.seenBy(HOST_B), ElementsAre(array.storeOf("lun_1")));
    array.unlink(Type::LUN_GROUP, b, Type::LUN, lun);
    EXPECT_THAT(config.stores(), IsEmpty());
}

TEST_F(SimulatorExport, AnotherArrayOnTheSameTargetShowsNothingOfTheFirst)
{
    {
        Shown first(config, root / "state");
        first.link(Type::LUN_GROUP, first.groupFor(HOST_A), Type::LUN, first.lun("secret"));
        put(first.file("lun_1"), 0, "the old array's data");
    }
    ASSERT_EQ(config.stores().size(), 1U) << "the target goes on while no array is there";
    fs::create_directories(root / "other");
    Shown second(config, root / "other");
    EXPECT_THAT(config.stores(), IsEmpty());
    EXPECT_THAT(config.seenBy(HOST_A), IsEmpty());
    second.link(Type::LUN_GROUP, second.groupFor(HOST_A), Type::LUN, second.lun("new"));
    EXPECT_THAT(config.seenBy(HOST_A), ElementsAre(second.storeOf("lun_1")));
    EXPECT_EQ(get(second.file("lun_1"), 0, 20), std::string(20, '\0'));
}

TEST_F(SimulatorExport, StoresOfOthersAreLeftAlone)
{
    fs::create_directories(root / "config" / "core" / "fileio_0");
    for (const char* name : {"lun_1", "volume", "tessel_99_lun_1"}) {
        config.makeDirectory(config.store(name)); // the last: of an array on another target
    }
    config.makeDirectory(config.group() / "lun" / "lun_0");
    fs::create_directory_symlink(config.store("volume"), config.group() / "lun" / "lun_0" / "store");
    Shown array(config, root / "state");
    array.link(Type::LUN_GROUP, array.groupFor(HOST_A), Type::LUN, array.lun("one"));
    EXPECT_EQ(config.stores().size(), 4U);
    EXPECT_THAT(config.seenBy(HOST_A), ElementsAre("volume", array.storeOf("lun_1")));
}

TEST_F(SimulatorExport, ARestartKeepsWhatIsWantedAndTakesTheRest)
{
    std::string kept;
    {
        Shown array(config, root / "state");
        const std::string group = array.groupFor(HOST_A);
        array.link(Type::LUN_GROUP, group, Type::LUN, array.lun("one"));
        array.link(Type::LUN_GROUP, group, Type::LUN, array.lun("two"));
        kept = array.storeOf("lun_1");
    }
    std::ofstream(config.store(kept) / "touched").close();
    // As if the array had died between its own change and the kernel's.
    fs::remove(root / "state" / "disks" / "lun_2");
    std::ofstream(root / "state" / "disks" / "lun_77") << "of a LUN that is gone";
    std::ofstream(root / "state" / "disks" / "copy_3") << "half of a copy";
    std::ofstream(root / "state" / "disks" / "notes") << "of somebody else";
    fs::create_directories(root / "state" / "disks" / "lost+found" / "x");
    {
        FakeConfigFs again(root / "config", IQN);
        Shown array(again, root / "state");
        EXPECT_TRUE(fs::exists(again.store(kept) / "touched")) << "an initiator's disk does not go away";
        EXPECT_FALSE(fs::exists(array.file("lun_77")));
        EXPECT_FALSE(fs::exists(array.file("copy_3")));
        EXPECT_TRUE(fs::exists(array.file("notes")));
        EXPECT_TRUE(fs::exists(array.file("lost+found")));
        array.unlink(Type::LUN_GROUP, "1", Type::LUN, "1");
        EXPECT_THAT(again.seenBy(HOST_A), ElementsAre(array.storeOf("lun_2")));
    }
}

TEST_F(SimulatorExport, AStoreWhoseDataLiesElsewhereNowIsMadeAnew)
{
    {
        Shown array(config, root / "state");
        array.link(Type::LUN_GROUP, array.groupFor(HOST_A), Type::LUN, array.lun("one"));
    }
    fs::rename(root / "state", root / "moved");
    Shown array(config, root / "moved");
    EXPECT_THAT(ConfigFs::read(config.store(array.storeOf("lun_1")) / "control"),
                HasSubstr((root / "moved").string()));
    EXPECT_THAT(config.seenBy(HOST_A), ElementsAre(array.storeOf("lun_1")));
}

TEST_F(SimulatorExport, ATargetServesOneArray)
{
    const Shown array(config, root / "state");
    fs::create_directories(root / "other");
    EXPECT_THROW(Shown(config, root / "other"), std::runtime_error);
    EXPECT_THROW(KernelTarget(config, "iqn.none", "tessel_1_"), std::runtime_error);
}

TEST_F(SimulatorExport, WhatTheKernelRefusesIsToldAndTheArrayGoesOn)
{
    Shown array(config, root / "state");
    const std::string group = array.groupFor(HOST_A);
    config.failing = "lun_1,";
    array.link(Type::LUN_GROUP, group, Type::LUN, array.lun("one"));
    array.link(Type::LUN_GROUP, group, Type::LUN, array.lun("two"));
    EXPECT_THAT(config.stores(), ElementsAre(array.storeOf("lun_2")));
    EXPECT_THAT(contents(root / "state" / "log"), HasSubstr("cannot show lun_1 to"));
    config.failing.clear();
    array.unlink(Type::LUN_GROUP, group, Type::LUN, "1");
    array.link(Type::LUN_GROUP, group, Type::LUN, "1");
    EXPECT_EQ(config.seenBy(HOST_A).size(), 2U) << "half a store was not left behind";
}

TEST_F(SimulatorExport, ASnapshotHoldsWhatItsLunHeld)
{
    Shown array(config, root / "state");
    const std::string group = array.groupFor(HOST_A);
    const std::string lun = array.lun("one");
    array.link(Type::LUN_GROUP, group, Type::LUN, lun);
    put(array.file("lun_1"), 4096, "before");
    const std::string snapshot = array.snapshot(lun, "copy");
    put(array.file("lun_1"), 4096, "behind");
    array.link(Type::LUN_GROUP, group, Type::SNAPSHOT, snapshot);
    EXPECT_EQ(get(array.file("snapshot_1"), 4096, 6), "before");
    EXPECT_EQ(fs::file_size(array.file("snapshot_1")), 1U << 20);
    EXPECT_THAT(config.seenBy(HOST_A), ElementsAre(array.storeOf("lun_1"), array.storeOf("snapshot_1")));
    array.unlink(Type::LUN_GROUP, group, Type::SNAPSHOT, snapshot);
    array.remove(Type::SNAPSHOT, snapshot);
    EXPECT_FALSE(fs::exists(array.file("snapshot_1")));
}

TEST_F(SimulatorExport, ASnapshotOfAnEmptyLunTakesNoRoom)
{
    Shown array(config, root / "state");
    const std::string lun = array.lun("large", 64 * GIB);
    array.link(Type::LUN_GROUP, array.groupFor(HOST_A), Type::LUN, lun);
    put(array.file("lun_1"), 40 * GIB, "data");
    array.snapshot(lun, "copy");
    EXPECT_EQ(fs::file_size(array.file("snapshot_1")), 64 * GIB);
    EXPECT_EQ(get(array.file("snapshot_1"), 40 * GIB, 4), "data");
    EXPECT_LT(allocated(array.file("snapshot_1")), 1U << 20);
}

TEST_F(SimulatorExport, TheArrayAnswersWhileASnapshotIsCopied)
{
    Shown array(config, root / "state");
    const std::string group = array.groupFor(HOST_A);
    const std::string lun = array.lun("one");
    array.link(Type::LUN_GROUP, group, Type::LUN, lun);
    // A pipe in place of the LUN's file: the copy waits until somebody writes.
    fs::remove(array.file("lun_1"));
    ASSERT_EQ(::mkfifo(array.file("lun_1").c_str(), 0600), 0);
    std::future<std::string> made =
        std::async(std::launch::async, [&] { return array.snapshot(lun, "copy"); });
    const auto isKept = [&] {
        const auto lock = array.world.lock();
        return array.world.find(Type::SNAPSHOT, "1") != nullptr;
    };
    while (!isKept()) {
        std::this_thread::yield();
    }
    array.link(Type::LUN_GROUP, group, Type::LUN, array.lun("meanwhile"));
    EXPECT_EQ(config.seenBy(HOST_A).size(), 2U);
    EXPECT_EQ(made.wait_for(std::chrono::seconds(0)), std::future_status::timeout)
        << "it is not answered yet";
    ::close(::open(array.file("lun_1").c_str(), O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(made.get(), "1");
}

TEST_F(SimulatorExport, ASnapshotThatIsShownWhileItIsCopiedIsSeenOnceItIsWhole)
{
    Shown array(config, root / "state");
    const std::string group = array.groupFor(HOST_A);
    const std::string lun = array.lun("one");
    array.link(Type::LUN_GROUP, group, Type::LUN, lun);
    std::promise<void> gate;
    const auto made = std::async(std::launch::async, [&] {
        const auto lock = array.world.lock();
        array.world.afterwards([&] { gate.get_future().wait(); }); // before the copy, which is begun by then
        createObject(array.world, objectType(Type::SNAPSHOT), parseBody(R"({"PARENTID":"1","NAME":"copy"})"),
                     {});
    });
    const auto until = [&](const std::function<bool()>& isSo) {
        for (bool isOver = false; !isOver; std::this_thread::yield()) {
            const auto lock = array.world.lock();
            isOver = isSo();
        }
    };
    until([&] { return array.world.find(Type::SNAPSHOT, "1") != nullptr; });
    const auto shown =
        std::async(std::launch::async, [&] { array.link(Type::LUN_GROUP, group, Type::SNAPSHOT, "1"); });
    until([&] { return !array.world.linked({Type::SNAPSHOT, "1"}, Type::LUN_GROUP).empty(); });
    gate.set_value();
    shown.wait();
    EXPECT_THAT(config.seenBy(HOST_A), testing::Contains(array.storeOf("snapshot_1")));
}

TEST_F(SimulatorExport, ALunThatHasGrownIsShownInItsNewSize)
{
    Shown array(config, root / "state");
    const std::string group = array.groupFor(HOST_A);
    const std::string lun = array.lun("one");
    array.link(Type::LUN_GROUP, group, Type::LUN, lun);
    put(array.file("lun_1"), 4096, "data");
    array.unlink(Type::LUN_GROUP, group, Type::LUN, lun);
    {
        const auto lock = array.world.lock();
        adjustObject(array.world, objectType(Type::LUN), lun, parseBody(R"({"CAPACITY":4096})"));
    }
    array.link(Type::LUN_GROUP, group, Type::LUN, lun);
    EXPECT_EQ(fs::file_size(array.file("lun_1")), 2U << 20);
    EXPECT_EQ(get(array.file("lun_1"), 4096, 4), "data");
}

TEST_F(SimulatorExport, ACopyForASnapshotThatIsGoneIsNotTakenForTheNextOfItsId)
{
    DiskFiles files(root / "disks", [](const std::string&) { return false; });
    const ObjectKey lun(Type::LUN, "1");
    const ObjectKey snapshot(Type::SNAPSHOT, "1");
    const auto copy = [&] {
        return files.beginCopy(lun, snapshot, 6, [](const std::string& why) { ADD_FAILURE() << why; });
    };
    const auto first = copy();
    files.discard(snapshot)();
    const auto second = copy();
    std::ofstream(files.fileOf(lun)) << "before";
    first();
    EXPECT_FALSE(fs::exists(files.fileOf(snapshot)));
    std::ofstream(files.fileOf(lun)) << "behind";
    second();
    EXPECT_EQ(contents(files.fileOf(snapshot)), "behind");
    files.awaitCopy(snapshot);
}

TEST_F(SimulatorExport, ANewDiskTakesNothingOverFromOneThatHadItsId)
{
    Shown array(config, root / "state");
    const std::string group = array.groupFor(HOST_A);
    array.lun("one");
    std::ofstream(array.file("lun_7")) << "left behind by a crash";
    array.make(Type::LUN, R"({"ID":"7","PARENTID":"0","NAME":"seven","CAPACITY":8})");
    array.link(Type::LUN_GROUP, group, Type::LUN, "7");
    EXPECT_EQ(get(array.file("lun_7"), 0, 4), std::string(4, '\0'));
}

TEST(SimulatorCopy, LeavesNothingWhereItFails)
{
    const fs::path root = temporary();
    EXPECT_THROW(copyData(root / "none", root / "to"), std::system_error);
    EXPECT_FALSE(fs::exists(root / "to"));
    fs::remove_all(root);
}

} // namespace
