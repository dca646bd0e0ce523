#ifndef SDK_SDK_H
#define SDK_SDK_H

#include <tessel/Tessel.h>

#include <functional>
#include <string>
#include <vector>

/** The SDK as an application has it, with the lines and records that this process left in the real logs. */
class Sdk
{
public:
    explicit Sdk(unsigned int retryTimes = 0, unsigned int retrySleepMicroSeconds = 0);
    ~Sdk();
    Sdk(const Sdk&) = delete;
    Sdk& operator=(const Sdk&) = delete;

    CDeviceManager& array() { return *m_array; }

    template <class Handler>
    Handler& handler(HANDLERTYPE type)
    {
        return *static_cast<Handler*>(m_array->getHandler(type));
    }
    CLunHandler& luns() { return handler<CLunHandler>(LUN_HANDLER); }
    CLunGroupHandler& lunGroups() { return handler<CLunGroupHandler>(LUNGROUP_HANDLER); }
    CSnapshotHandler& snapshots() { return handler<CSnapshotHandler>(SNAPSHOT_HANDLER); }
    CHostHandler& hosts() { return handler<CHostHandler>(HOST_HANDLER); }
    CHostGroupHandler& hostGroups() { return handler<CHostGroupHandler>(HOSTGROUP_HANDLER); }
    CMappingViewHandler& views() { return handler<CMappingViewHandler>(MAPPINGVIEW_HANDLER); }
    CIscsiInitiatorHandler& initiators() { return handler<CIscsiInitiatorHandler>(ISCSIINITIATOR_HANDLER); }
    CFCInitiatorHandler& fcInitiators() { return handler<CFCInitiatorHandler>(FCINITIATOR_HANDLER); }
    CDiskAttachHandler& attach() { return handler<CDiskAttachHandler>(DISKATTACH_HANDLER); }

private:
    CDeviceManager* m_array;
};

/** The lines of this process in a log file of today: "Tessel_run_" or "Tessel_interface_". */
std::vector<std::string> logLines(const std::string& filePrefix);

/** The run-log texts ("LEVEL text") of this process since the mark; the interface records' "operation
 * result". */
class LogMark
{
public:
    LogMark();
    std::vector<std::string> run() const;
    std::vector<std::string> records() const;

private:
    size_t m_run;
    size_t m_records;
};

/** The message of the exception that the call throws; "" when it throws none, "other" for one of a foreign
 * class. */
std::string thrownBy(const std::function<void()>& call);

/** Trusts that CA file for what follows, with short time-outs, in this process. */
void trust(const std::string& caFile, long connectSeconds = 20, long seconds = 30);

#endif
