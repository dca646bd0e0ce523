#include "attach/Attach.h"
#include "attach/Patience.h"
#include "disk/DiskJson.h"
#include "disk/HostFiles.h"
#include "disk/Initiator.h"
#include "frame/Outcome.h"
#include "localdisk/ArrayObjects.h"
#include "objects/Existence.h"
#include "output/Progress.h"
#include "session/Advice.h"
#include "text/Display.h"
#include "text/Numbers.h"

#include <tessel/LocalDisk.h>

namespace tesselctl {
namespace {

using ovra::tessel::HostInitiator;
using ovra::tessel::LocalDisk;
using ovra::tessel::LocalDiskOptions;

constexpr uint64_t LONGEST_LIMIT_S = 86400;

/** A limit of LocalDisk as an option. */
struct Limit
{
    const char* option;
    const char* help;
    unsigned LocalDiskOptions::*seconds;
    unsigned least;
};

constexpr Limit LOCK = {"--lock-seconds", "longest wait for the scans of others",
                        &LocalDiskOptions::lockSeconds, 0};
constexpr Limit FIND = {"--find-seconds", "longest wait for the kernel to find the disk",
                        &LocalDiskOptions::findSeconds, 0};
constexpr Limit MAP = {"--map-seconds", "longest wait for the multipath map of its paths",
                       &LocalDiskOptions::mapSeconds, 0};
constexpr Limit STEP = {"--step-seconds", "longest wait for one answer of a disk, and for one tool",
                        &LocalDiskOptions::stepSeconds, 1};
constexpr Limit FLUSH = {"--flush-seconds", "longest wait for what is not yet written to reach the disk",
                         &LocalDiskOptions::flushSeconds, 1};

void addLimits(const std::vector<Limit>& limits, std::vector<Option>& options)
{
    for (const Limit& limit : limits) {
        options.push_back(
            {limit.option, "SECONDS",
             std::string(limit.help) + " (" + std::to_string(LocalDiskOptions().*limit.seconds) + ")"});
    }
}

/** One command about the disk of a LUN or snapshot. */
class DiskCommand
{
public:
    DiskCommand(Context& context, const Attachable& object, const std::vector<Limit>& limits)
        : m_context(context), m_object(object), m_id(context.text("ID")),
          m_initiator(context.has("DEVICE") ? HostInitiator{false, ""} : chosenAnyInitiator(context))
    {
        for (const Limit& limit : limits) {
            if (context.has(limit.option)) {
                m_options.*limit.seconds = static_cast<unsigned>(
                    parseNumber(limit.option, context.text(limit.option), limit.least, LONGEST_LIMIT_S));
            }
        }
    }

    void attach()
    {
        requireScanRights("the attach");
        m_options.access.hostIP = m_context.text(
            "--host-ip",
            m_context.has("--initiator") ? "" : localAddressTowards(m_context.session().address()));
        const Json::Value result =
            resultWith("disk attach", told("making " + called() + " a disk", [&] {
                           return described(LocalDisk::attach(manager(), volume(), m_initiator, m_options));
                       }));
        m_context.printer().result(printable(result["path"].asString()) + "\n", result);
    }

    void release()
    {
        requireScanRights("the release");
        const bool isForced = m_context.has("--force");
        told("releasing the disk of " + called(), [&] {
            LocalDisk::release(manager(), volume(), m_initiator, m_options, isForced);
            return 0;
        });
        Json::Value result = resultWith("disk release", Json::Value(Json::objectValue));
        result["visible"] = isVisible();
        if (result["visible"].asBool()) {
            m_context.printer().note(called() +
                                     " stays visible to this host through LUN groups of others: a scan "
                                     "brings its disk back; 'tesselctl detach " +
                                     m_object.word + " " + m_id + "' tells which");
        }
        m_context.printer().result(called() + " is no disk of this host any more\n", result);
    }

    void verify()
    {
        requireScanRights("the verification");
        const std::string device = m_context.text("DEVICE");
        const Json::Value disk = told("verifying the disk of " + called(), [&] {
            if (device.empty()) { // finding proves
                return described(LocalDisk::find(manager(), volume(), m_initiator, m_options));
            }
            ovra::tessel::verifyDisk(manager(), volume(), device, m_options);
            Json::Value given(Json::objectValue);
            given["path"] = validUtf8(device);
            return given;
        });
        m_context.printer().result(printable(disk["path"].asString()) + " is " + called() + "\n",
                                   resultWith("disk verify", disk));
    }

private:
    CDeviceManager& manager() { return m_context.session().manager(); }
    ovra::tessel::StorageObject volume() const { return m_object.storage(m_id); }
    std::string called() const { return m_object.called(m_id); }

    /** What is told of a disk, which stays. */
    static Json::Value described(LocalDisk disk)
    {
        disk.keep();
        Json::Value json(Json::objectValue);
        json["path"] = disk.path();
        json["size"] = Json::UInt64(disk.size());
        json["wwn"] = disk.wwn();
        json["paths"] = Json::Value(Json::arrayValue);
        for (const ovra::tessel::DiskPath& path : disk.paths()) {
            json["paths"].append(pathJson(path.device, path.address, path.state));
        }
        return json;
    }

    Json::Value resultWith(const char* action, const Json::Value& disk) const
    {
        Json::Value result = resultOf(action, m_object, m_id, m_initiator.id);
        if (m_initiator.id.empty()) {
            result["initiator"] = Json::Value();
        }
        for (const std::string& name : disk.getMemberNames()) {
            result[name] = disk[name];
        }
        return result;
    }

    /** Does a call of LocalDisk; what it throws becomes a line for the administrator. */
    template <class Call>
    auto told(const std::string& work, const Call& call) -> decltype(call())
    {
        try {
            m_context.session(); // which may ask for a password
            const Progress progress(work);
            return call();
        } catch (const OvraAPIException& error) {
            throwRefused(error);
        }
    }

    [[noreturn]] void throwRefused(const OvraAPIException& error)
    {
        if (isTransportFailure(ovra::tessel::failureOf(error))) {
            throw;
        }
        patiently([&] { requireThere(m_context.session(), {m_object.title, m_id}); });
        if (!m_initiator.id.empty()) {
            patiently([&] { requireThere(m_context.session(), {titleOf(m_initiator), m_initiator.id}); });
        }
        if (dynamic_cast<const OvraAPIExceptionWithErrCode*>(&error) != nullptr) {
            throw;
        }
        const std::string message = outcomeOf(error).message;
        const std::string sentence = message.substr(0, message.rfind("! ("));
        const bool isInUse = sentence.find(": it is in use: ") != std::string::npos;
        throw Failure(sentence + (isInUse ? "; end that, or release it all the same with --force"
                                          : "; see the run log in " + logDirectory()),
                      ovra::tessel::lastScanSignal() != 0 ? ExitCode::INTERRUPTED : ExitCode::FAILURE);
    }

    bool isVisible()
    {
        Session& session = m_context.session();
        const std::string host = patiently([&] { return hostIdOf(session, m_initiator); });
        return !host.empty() && patiently([&] { return m_object.isSeenByHost(session, m_id, host); });
    }

    Context& m_context;
    const Attachable& m_object;
    const std::string m_id;
    const HostInitiator m_initiator; ///< without an ID where a device is named
    LocalDiskOptions m_options;
};

void addForEach(const std::string& verb, const std::string& summary, const std::vector<Argument>& more,
                const std::vector<Option>& options, const std::vector<Limit>& limits,
                void (DiskCommand::*run)(), Commands& commands)
{
    for (const Attachable& object : attachables()) {
        Command command{{"disk", verb, object.word},
                        summary + " " + object.title,
                        {object.idArgument()},
                        anyInitiatorOptions(),
                        {},
                        nullptr};
        command.arguments.insert(command.arguments.end(), more.begin(), more.end());
        command.options.insert(command.options.end(), options.begin(), options.end());
        addLimits(limits, command.options);
        command.run = [&object, limits, run](Context& context) {
            (DiskCommand(context, object, limits).*run)();
        };
        commands.push_back(command);
    }
}

} // namespace

Commands diskCommands()
{
    Commands commands;
    addForEach("attach", "show to this host, find and prove the disk of a", {},
               {{"--host-ip", "IP", "address of the host record, where the attach has to create one"}},
               {LOCK, FIND, MAP, STEP}, &DiskCommand::attach, commands);
    addForEach("release", "write back, remove and hide the disk of a", {},
               {{"--force", "", "even when it is in use; what uses it then fails"}}, {LOCK, FLUSH, STEP},
               &DiskCommand::release, commands);
    addForEach("verify", "prove the disk of a",
               {{"DEVICE", "such as /dev/sdc; what an attach would give unless given", {}, true}}, {},
               {MAP, STEP}, &DiskCommand::verify, commands);
    return commands;
}

} // namespace tesselctl
