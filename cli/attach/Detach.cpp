#include "attach/Attach.h"
#include "attach/DetachEffect.h"
#include "attach/Devices.h"
#include "attach/Patience.h"
#include "disk/Initiator.h"
#include "disk/LocalDisks.h"
#include "text/Words.h"

#include <algorithm>

namespace tesselctl {
namespace {

using ovra::tessel::AccessOptions;
using ovra::tessel::AccessResult;
using ovra::tessel::HostInitiator;

/** One detach, of one host or of every host. */
class Detach
{
public:
    Detach(Context& context, const Attachable& object)
        : m_context(context), m_session(context.session()), m_object(object), m_id(context.text("ID")),
          m_isForced(context.has("--force"))
    {
    }

    void fromHost(const std::string& initiator)
    {
        const std::string wwn = readWwn();
        const std::string host = hostOf(m_context, initiator);
        Json::Value result = resultOf("detach", m_object, m_id, initiator);
        if (m_context.has("--remove-devices") && !m_isForced && !host.empty()) {
            // What stays visible keeps its disks.
            refuse(
                objections(m_session, m_object, m_id, groupsTowards(m_session, m_object, m_id, host), host));
        }
        std::string text = clearDevices(wwn, result);
        if (!host.empty()) {
            hide(initiator, host);
        }
        result["hostId"] = host.empty() ? Json::Value() : Json::Value(host);
        text += tell(host.empty() ? "initiator " + initiator + ", which has no host" : "host " + host, host,
                     result);
        m_context.printer().result(text, result);
    }

    void fromEveryHost()
    {
        const std::string wwn = readWwn();
        if (!m_isForced) {
            refuse(objections(m_session, m_object, m_id, groups(), ""));
        }
        Json::Value result = resultOf("detach", m_object, m_id, "");
        std::string text = clearDevices(wwn, result);
        leaveAll();
        result["hostId"] = Json::Value();
        text += tell("any host", "", result);
        m_context.printer().result(text, result);
    }

private:
    std::string readWwn() const
    {
        return patiently([&] { return m_object.wwn(m_session, m_id); }); // tells an unknown ID apart
    }

    LunGroupList groups() const
    {
        LunGroupList list;
        for (const auto& group : patiently([&] { return m_object.groups(m_session, m_id); })) {
            list.push_back({MO_LUNGROUP, group.ID, group.NAME});
        }
        return list;
    }

    static void refuse(const std::vector<std::string>& reasons)
    {
        if (!reasons.empty()) {
            throw Failure(joined(reasons, "; ") + "; detach it all the same with --force");
        }
    }

    /** Removes the object's devices when asked to; devices that stay without it become dead disks. */
    std::string clearDevices(const std::string& wwn, Json::Value& result)
    {
        if (m_context.has("--remove-devices")) {
            removeDevicesOf(m_context, m_object, m_id, result);
            return deviceSentence(result);
        }
        const auto disks = disksWithWwn(wwn);
        if (!disks.empty()) {
            m_context.printer().note("this host still has devices of it (" + joined(disks) +
                                     "), which are dead once it is detached: use --remove-devices");
        }
        return "";
    }

    AccessResult callHide(const std::string& initiator, const std::string& host, bool evenThroughOthers)
    {
        AccessOptions options;
        options.evenThroughOthers = evenThroughOthers;
        try {
            AccessResult result = ensureHidden(m_session.manager(), m_object.storage(m_id),
                                               HostInitiator::iscsi(initiator), options);
            m_left.insert(m_left.end(), result.leftFrom.begin(), result.leftFrom.end());
            return result;
        } catch (const OvraAPIException& error) {
            throwUnchanged(m_context, m_object, m_id, initiator, error,
                           "host " + host + " still sees " + m_object.called(m_id),
                           "see 'tesselctl lungroup list --" + m_object.word + " " + m_id + "'");
        }
    }

    void hide(const std::string& initiator, const std::string& host)
    {
        AccessResult access = callHide(initiator, host, m_isForced);
        if (!access.isVisible) {
            return;
        }
        LunGroupList others;
        for (const auto& path : access.others) {
            const bool isKnown = std::any_of(others.begin(), others.end(),
                                             [&](const auto& group) { return group.ID == path.lunGroup.ID; });
            if (!isKnown) {
                others.push_back(path.lunGroup);
            }
        }
        auto reasons = objections(m_session, m_object, m_id, others, host);
        if (reasons.empty() && !others.empty()) { // attaches of the old kind made them, for this host alone
            access = callHide(initiator, host, true);
        }
        if (access.isVisible) {
            const std::string where = "host " + host + " still sees " + m_object.called(m_id);
            reasons.insert(reasons.begin(),
                           m_left.empty() ? where
                                          : where + ", though no longer through " + joinedNames(m_left));
            refuse(reasons);
        }
    }

    static std::string joinedNames(const LunGroupList& groups)
    {
        std::vector<std::string> names;
        for (const auto& group : groups) {
            names.push_back("LUN group " + group.ID + " (" + group.NAME + ")");
        }
        return joined(names);
    }

    /** Failures of the single steps are quiet: what is left is read back. */
    void leaveAll()
    {
        for (int left = TRIES;; --left) {
            const LunGroupList held = groups();
            if (held.empty()) {
                return;
            }
            if (left == 0) {
                throw Failure("the array took the request, but a LUN group still holds " +
                              m_object.called(m_id) + "; see 'tesselctl lungroup list --" + m_object.word +
                              " " + m_id + "'");
            }
            if (left < TRIES) {
                std::this_thread::sleep_for(TRY_PAUSE);
            } else {
                m_left = held;
            }
            for (const auto& group : held) {
                m_object.leave(m_session, m_id, group.ID);
            }
        }
    }

    std::string tell(const std::string& where, const std::string& host, Json::Value& result)
    {
        result["wasVisible"] = !m_left.empty();
        return m_object.called(m_id) +
               (m_left.empty() ? " was not visible to " : " is no longer visible to ") + where + "\n" +
               tellEffect(m_session, m_left, host, result);
    }

    Context& m_context;
    Session& m_session;
    const Attachable& m_object;
    std::string m_id;
    bool m_isForced;
    LunGroupList m_left; ///< LUN groups that it was taken out of
};

void detach(Context& context, const Attachable& object)
{
    const bool isOfAll = context.has("--all-hosts");
    if (isOfAll && (context.has("--initiator") || context.has("--initiator-file"))) {
        throw UsageError("--all-hosts does not go with --initiator");
    }
    if (isOfAll) {
        Detach(context, object).fromEveryHost();
    } else {
        const std::string initiator = chosenInitiator(context);
        Detach(context, object).fromHost(initiator);
    }
}

} // namespace

Commands detachCommands()
{
    std::vector<Option> options = initiatorOptions();
    options.push_back({"--all-hosts", "", "take it away from every host"});
    options.push_back({"--remove-devices", "", "remove its devices from this host before"});
    options.push_back(
        {"--force", "",
         "even when other hosts lose it, it is taken out of a group that no attach has made, or "
         "devices to be removed are in use"});
    return forEachAttachable("detach", "take away from a host", options, detach);
}

} // namespace tesselctl
