#include "access/FCInitiatorHandlerImpl.h"

#include "access/AccessFields.h"
#include "session/Texts.h"

using namespace ovra::tessel;

FCInitiatorMO CFCInitiatorHandlerImpl::createFCInitiator(FCInitiatorMO& initiator)
{
    return run("createFCInitiator", [&](Operation& op) {
        op.requireId(initiator.ID, texts::FC_INITIATOR_ID);
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
    deleteById("deleteFCInitiator", "/fc_initiator/", fcInitiatorID, texts::FC_INITIATOR_ID);
}

FCInitiatorMO CFCInitiatorHandlerImpl::getFCInitiator(const std::string& fcInitiatorID)
{
    return run("getFCInitiator", [&](Operation& op) {
        op.requireId(fcInitiatorID, texts::FC_INITIATOR_ID);
        return op.get("/fc_initiator/" + urlValue(fcInitiatorID)).readAny<FCInitiatorMO>();
    });
}

void CFCInitiatorHandlerImpl::addFCInitiatorToHost(const std::string& fcInitiatorID,
                                                   const std::string& hostID)
{
    run("addFCInitiatorToHost", [&](Operation& op) {
        op.requireId(fcInitiatorID, texts::FC_INITIATOR_ID);
        op.requireId(hostID, texts::HOST_ID);
        op.add("PARENTTYPE", int{MO_HOST});
        op.add("PARENTID", hostID);
        op.put("/fc_initiator/" + urlValue(fcInitiatorID));
    });
}

void CFCInitiatorHandlerImpl::removeFCInitiatorFromHost(const std::string& fcInitiatorID)
{
    run("removeFCInitiatorFromHost", [&](Operation& op) {
        op.requireId(fcInitiatorID, texts::FC_INITIATOR_ID);
        op.add("ID", fcInitiatorID);
        op.put("/fc_initiator/remove_fc_from_host");
    });
}
