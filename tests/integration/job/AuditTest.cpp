// "Who showed LUN 17 to which host, when" is one line of the audit log, of the real libraries.

#include "JobTest.h"

#include <gmock/gmock.h>
#include <json/reader.h>
#include <ovra/log/LogAPI.h>
#include <tessel/Audit.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <unistd.h>

using namespace ovra::tessel;

namespace {

/** The lines of this process in the audit log; before them those of earlier ones that had its number. */
std::vector<Json::Value> auditLines()
{
    std::set<std::filesystem::path> files; // one for each day
    for (const auto& entry : std::filesystem::directory_iterator(Log_Directory())) {
        if (entry.path().filename().string().find("Tessel_audit_") == 0) {
            files.insert(entry.path());
        }
    }
    std::vector<Json::Value> lines;
    for (const std::filesystem::path& path : files) {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            std::istringstream stream(line);
            Json::Value value;
            std::string errors;
            EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, &errors)) << line;
            if (value["process"].asInt() == getpid()) {
                lines.push_back(value);
            }
        }
    }
    return lines;
}

class Audited : public JobTest
{
protected:
    Audited() { addObserver(m_audit); }
    ~Audited() override { removeObserver(m_audit); }

    /** The one line that a call leaves. */
    Json::Value lineOf(const std::function<void()>& call)
    {
        const size_t before = auditLines().size();
        call();
        const std::vector<Json::Value> lines = auditLines();
        EXPECT_EQ(lines.size(), before + 1);
        return lines.empty() ? Json::Value() : lines.back();
    }

    const std::shared_ptr<Observer> m_audit = auditFile();
};

TEST_F(Audited, ShowingAndHidingLeaveALineWithLunHostAndInitiator)
{
    const std::string lun = sim.createLun("l");
    newInitiator();
    std::string host;
    const Json::Value shown = lineOf([&] { host = show(lun).hostID; });
    EXPECT_EQ(shown["operation"], "ensureVisible");
    EXPECT_EQ(shown["lun"], lun);
    EXPECT_EQ(shown["host"], host);
    EXPECT_EQ(shown["initiator"], INITIATOR);
    EXPECT_EQ(shown["user"], sim.user());
    EXPECT_EQ(shown["array"], sim.ip() + ":" + std::to_string(sim.port()));
    EXPECT_EQ(shown["done"], true);
    EXPECT_EQ(lineOf([&] { show(lun); })["host"], host) << "also where there was nothing to do";
    const Json::Value hidden = lineOf([&] { hide(lun); });
    EXPECT_EQ(hidden["operation"], "ensureHidden");
    EXPECT_EQ(hidden["host"], host);
}

TEST_F(Audited, AnAttachAndADetachLeaveALineWithLunHostAndInitiator)
{
    const std::string lun = sim.createLun("l");
    newInitiator();
    CDiskAttachHandler& attaching = array.handler<CDiskAttachHandler>();
    const Json::Value attached = lineOf([&] { attaching.attachLunToHost(lun, INITIATOR, ""); });
    EXPECT_EQ(attached["operation"], "attachLunToHost");
    EXPECT_EQ(attached["lun"], lun);
    EXPECT_EQ(attached["initiator"], INITIATOR);
    EXPECT_FALSE(attached["host"].asString().empty());
    const Json::Value detached = lineOf([&] { attaching.detachLunFromHost(lun, INITIATOR); });
    EXPECT_EQ(detached["host"], attached["host"]);
}

TEST_F(Audited, ASingleStepLeavesALineWithWhatItsArgumentsName)
{
    const std::string lun = sim.createLun("l");
    const std::string group = make("lungroup", "g");
    const Json::Value line = lineOf([&] { array.lunGroups()->addLunToLunGroup(lun, group); });
    EXPECT_EQ(line["lun"], lun);
    EXPECT_EQ(line["lungroup"], group);
    const size_t before = auditLines().size();
    array.luns()->getLun(lun);
    EXPECT_EQ(auditLines().size(), before) << "what changes nothing is not written";
}

} // namespace
