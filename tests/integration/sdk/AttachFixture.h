#ifndef SDK_ATTACHFIXTURE_H
#define SDK_ATTACHFIXTURE_H

#include "LoggedIn.h"
#include "NextSecond.h"

/** What the attach tests differ in between LUNs and snapshots. */
struct AttachedLun
{
    static constexpr const char* NAME = "Lun";

    static std::string make(tessel_test::ArraySim& sim, const std::string& name)
    {
        return sim.createLun(name);
    }
    static int attach(Sdk& sdk, const std::string& id, const std::string& initiator)
    {
        return sdk.attach().attachLunToHost(id, initiator, "192.0.2.9");
    }
    static int detach(Sdk& sdk, const std::string& id, const std::string& initiator)
    {
        return sdk.attach().detachLunFromHost(id, initiator);
    }
    static size_t seen(Sdk& sdk, const std::string& host)
    {
        LunQuery all;
        return sdk.luns().getLunByHost(host, all).size();
    }
};

struct AttachedSnapshot
{
    static constexpr const char* NAME = "Snapshot";

    static std::string make(tessel_test::ArraySim& sim, const std::string& name)
    {
        return sim.createSnapshot(sim.createLun(name + " source"), name);
    }
    static int attach(Sdk& sdk, const std::string& id, const std::string& initiator)
    {
        return sdk.attach().attachSnapshotToHost(id, initiator, "192.0.2.9");
    }
    static int detach(Sdk& sdk, const std::string& id, const std::string& initiator)
    {
        return sdk.attach().detachSnapshotFromHost(id, initiator);
    }
    static size_t seen(Sdk& sdk, const std::string& host)
    {
        SnapshotQuery all;
        return sdk.snapshots().getSnapshotByHost(host, all).size();
    }
};

using AttachedKinds = testing::Types<AttachedLun, AttachedSnapshot>;

struct AttachedKindName
{
    template <class Kind>
    static std::string GetName(int)
    {
        return Kind::NAME;
    }
};

template <class Kind>
class AttachTo : public LoggedIn
{
public:
    static constexpr const char* INITIATOR = "iqn.2026-01.example:attach";

    void SetUp() override
    {
        LoggedIn::SetUp();
        prepare();
    }

    /** An object to attach and a free initiator, on an array that holds nothing else. */
    void prepare()
    {
        object = newObject("object");
        Json::Value initiator;
        initiator["ID"] = INITIATOR;
        sim.create("iscsi_initiator", initiator);
    }

    std::string newObject(const std::string& name) { return Kind::make(sim, name); }
    int attach() { return Kind::attach(sdk, object, INITIATOR); }
    int detach(const std::string& initiator = INITIATOR) { return Kind::detach(sdk, object, initiator); }
    static std::string attachName() { return std::string("attach") + Kind::NAME + "ToHost"; }
    static std::string detachName() { return std::string("detach") + Kind::NAME + "FromHost"; }

    size_t seenByHost()
    {
        const std::string host = sdk.initiators().getIscsiInitiator(INITIATOR).PARENTID;
        return host.empty() ? 0 : Kind::seen(sdk, host);
    }

    /** What stands on the array beside LUNs and snapshots. */
    std::string state() const
    {
        const Json::Value initiator = sim.record("iscsi_initiator", INITIATOR);
        std::string text = initiator["ISFREE"].asString() == "true" ? "initiator free" : "initiator bound";
        text += counted("host", "host") + counted("hostgroup", "host group") + counted("mappingview", "view");
        return text + counted("lungroup", "LUN group");
    }

    std::string object;

    std::string counted(const std::string& resource, const std::string& label) const
    {
        const Json::ArrayIndex count = sim.control("GET", "/objects/" + resource)["data"].size();
        return count == 0 ? "" : ", " + std::to_string(count) + " " + label + (count == 1 ? "" : "s");
    }
};

#endif
