#include "host/DiskAttachHandlerImpl.h"

#include "host/AttachSteps.h"
#include "host/Detach.h"

#include <ctime>
#include <cxxabi.h>
#include <functional>

using namespace ovra::tessel;

namespace {

constexpr int ALREADY_MAPPED = 1; // docs/oddities.md#already-mapped

/** The initiator's host; one is made for an initiator that has none. */
HostMO hostOf(const AttachHandlers& handlers, const IscsiInitiatorMO& initiator, const std::string& newName,
              const std::string& newIp)
{
    if (!initiator.PARENTID.empty()) {
        return handlers.host().getHost(initiator.PARENTID);
    }
    HostMO host;
    host.NAME = newName;
    host.IP = newIp;
    host = handlers.host().createHost(host);
    handlers.initiator().addIscsiInitiatorToHost(initiator.ID, host.ID);
    return host;
}

template <class Kind>
int attach(CDiskAttachHandlerImpl& self, CDeviceManagerImpl* deviceManager, const std::string& id,
           const std::string& initiatorId, const std::string& hostIp)
{
    return Operation::run(Kind::ATTACH_NAME, deviceManager, [&](Operation& op) {
        checkArguments<Kind>(op, id, initiatorId, deviceManager);
        const AttachHandlers handlers(op, *deviceManager, Order<Kind>::ATTACH);
        const auto object = readObject<Kind>(op, handlers, id);
        const IscsiInitiatorMO initiator = readInitiator(op, handlers, initiatorId);
        const HostMO host = hostOf(handlers, initiator, self.getBuildedName("host"), hostIp);
        op.names(kinds::HOST, host.ID);

        typename Kind::Query wanted = only<Kind>(id);
        if (!std::invoke(Kind::OF_HOST, handlers.of<Kind>(), host.ID, wanted).empty()) {
            op.close("The MappingView was already existed! ", RESULT_BAD_ARGUMENT);
            return ALREADY_MAPPED;
        }
        LunGroupMO lunGroup;
        lunGroup.NAME = self.getBuildedName("lungroup");
        lunGroup = handlers.lunGroup().createLunGroup(lunGroup);
        std::invoke(Kind::ADD, handlers.lunGroup(), object.ID, lunGroup.ID);

        HostGroupMO hostGroup;
        hostGroup.NAME = self.getBuildedName("hostgroup");
        hostGroup = handlers.hostGroup().createHostGroup(hostGroup);
        handlers.hostGroup().addHostToHostGroup(host.ID, hostGroup.ID);

        MappingViewMO view;
        view.NAME = self.getBuildedName("mappingview");
        view = handlers.mappingView().createMappingView(view);
        self.addMappingView(lunGroup.ID, hostGroup.ID, view.ID, &handlers.mappingView(), op.name());
        return DONE;
    });
}

} // namespace

int CDiskAttachHandlerImpl::attachLunToHost(const std::string& lunID, const std::string& iscsiInitiatorID,
                                            const std::string& hostIP)
{
    return attach<LunKind>(*this, m_pDeviceManager, lunID, iscsiInitiatorID, hostIP);
}

int CDiskAttachHandlerImpl::detachLunFromHost(const std::string& lunID, const std::string& iscsiInitiatorID)
{
    return detach<LunKind>(m_pDeviceManager, lunID, iscsiInitiatorID);
}

int CDiskAttachHandlerImpl::attachSnapshotToHost(const std::string& snapshotID,
                                                 const std::string& iscsiInitiatorID,
                                                 const std::string& hostIP)
{
    return attach<SnapshotKind>(*this, m_pDeviceManager, snapshotID, iscsiInitiatorID, hostIP);
}

int CDiskAttachHandlerImpl::detachSnapshotFromHost(const std::string& snapshotID,
                                                   const std::string& iscsiInitiatorID)
{
    return detach<SnapshotKind>(m_pDeviceManager, snapshotID, iscsiInitiatorID);
}

std::string CDiskAttachHandlerImpl::getBuildedName(const std::string& prefix)
{
    return prefix + "_" + std::to_string(time(nullptr));
}

void CDiskAttachHandlerImpl::addMappingView(const std::string& lunGroupID, const std::string& hostGroupID,
                                            const std::string& mappingViewID,
                                            CMappingViewHandler* mappingViewHandler,
                                            const std::string& callerName)
{
    try {
        mappingViewHandler->addHostGroupToMappingView(hostGroupID, mappingViewID);
        mappingViewHandler->addLunGroupToMappingView(lunGroupID, mappingViewID);
    } catch (const abi::__forced_unwind&) {
        throw; // the thread is being cancelled: nothing may stop that
    } catch (...) {
        COMMLOG(OS_LOG_ERROR, "MappingView add HostGroup or add LunGroup fail! %s", callerName.c_str());
        Observation::absorbed();
        mappingViewHandler->deleteMappingView(mappingViewID);
    }
}
