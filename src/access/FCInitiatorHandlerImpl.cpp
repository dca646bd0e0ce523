#include "access/FCInitiatorHandlerImpl.h"

#include "access/FCInitiatorFields.h"
#include "session/Operation.h"
#include "session/Texts.h"
#include "session/Url.h"

using namespace ovra::tessel;

FCInitiatorMO CFCInitiatorHandlerImpl::createFCInitiator(FCInitiatorMO& initiator)
{
    return Operation::run("createFCInitiator", m_pDeviceManager, [&](Operation& op) {
        op.require(!initiator.ID.empty(), texts::FC_INITIATOR_ID_EMPTY);
        op.add("ID", initiator.ID);
        if (!initiator.PARENTID.empty()) {
            op.add("PARENTID", initiator.PARENTID);
            op.add("PARENTTYPE", int{MO_HOST});
        }
        op.addIfSet("NAME", initiator.NAME);
        return getFCInitiator(op.post("/fc_initiator").id());
    });
}

void CFCInitiatorHandlerImpl::deleteFCInitiator(const std::string& fcInitiatorID)
{
    Operation::run("deleteFCInitiator", m_pDeviceManager, [&](Operation& op) {
        op.require(!fcInitiatorID.empty(), texts::FC_INITIATOR_ID_EMPTY);
        op.del("/fc_initiator/" + urlValue(fcInitiatorID));
    });
}

FCInitiatorMO CFCInitiatorHandlerImpl::getFCInitiator(const std::string& fcInitiatorID)
{
    return Operation::run("getFCInitiator", m_pDeviceManager, [&](Operation& op) {
        op.require(!fcInitiatorID.empty(), texts::FC_INITIATOR_ID_EMPTY);
        return op.get("/fc_initiator/" + urlValue(fcInitiatorID)).readAny<FCInitiatorMO>();
    });
}

void CFCInitiatorHandlerImpl::addFCInitiatorToHost(const std::string& fcInitiatorID,
                                                   const std::string& hostID)
{
    Operation::run("addFCInitiatorToHost", m_pDeviceManager, [&](Operation& op) {
        op.require(!fcInitiatorID.empty(), texts::FC_INITIATOR_ID_EMPTY);
        op.require(!hostID.empty(), texts::HOST_ID_EMPTY);
        op.add("PARENTTYPE", int{MO_HOST});
        op.add("PARENTID", hostID);
        op.put("/fc_initiator/" + urlValue(fcInitiatorID));
    });
}

void CFCInitiatorHandlerImpl::removeFCInitiatorFromHost(const std::string& fcInitiatorID)
{
    Operation::run("removeFCInitiatorFromHost", m_pDeviceManager, [&](Operation& op) {
        op.require(!fcInitiatorID.empty(), texts::FC_INITIATOR_ID_EMPTY);
        op.add("ID", fcInitiatorID);
        op.put("/fc_initiator/remove_fc_from_host");
    });
}
