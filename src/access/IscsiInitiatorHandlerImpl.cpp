#include "access/IscsiInitiatorHandlerImpl.h"

#include "access/AccessFields.h"
#include "session/Texts.h"

using namespace ovra::tessel;

namespace {

constexpr const char* NO_CHAP = "0";
constexpr const char* MUTUAL_CHAP = "2";

bool isChapOn(const IscsiInitiatorMO& initiator)
{
    return initiator.NORMALVERMODE != NO_CHAP || initiator.DISCOVERYVERMODE != NO_CHAP;
}

bool isMutual(const IscsiInitiatorMO& initiator)
{
    return initiator.NORMALVERMODE == MUTUAL_CHAP || initiator.DISCOVERYVERMODE == MUTUAL_CHAP;
}

/** "USECHAP" and the modes; true when CHAP is on. Off without a mode: docs/oddities.md#usechap */
bool addChapModes(Operation& op, const IscsiInitiatorMO& initiator)
{
    const bool on = initiator.USECHAP && isChapOn(initiator);
    op.add("USECHAP", on ? "true" : "false");
    if (on) {
        op.add("NORMALVERMODE", initiator.NORMALVERMODE);
        op.add("DISCOVERYVERMODE", initiator.DISCOVERYVERMODE);
    }
    return on;
}

void addChapOnCreate(Operation& op, const IscsiInitiatorMO& initiator)
{
    // What is missing is told and sent all the same: docs/oddities.md#empty-chap
    if (initiator.USECHAP && isChapOn(initiator)) {
        op.expect(!initiator.CHAPNAME.empty(), "ChapName is empty! ");
        op.expect(!initiator.CHAPPASSWORD.empty(), "ChapPassword is empty! ");
    }
    if (addChapModes(op, initiator)) {
        op.add("CHAPNAME", initiator.CHAPNAME);
        op.add("CHAPPASSWORD", initiator.CHAPPASSWORD);
    }
    if (initiator.USECHAP && isMutual(initiator)) {
        op.expect(!initiator.CHAPNAMEINITATORVERTARGET.empty(), "ChapNameTarget is empty! ");
        op.expect(!initiator.CHAPPASSWORDINITATORVERTARGET.empty(), "ChapPasswordTarget is empty! ");
        op.add("CHAPNAMEINITATORVERTARGET", initiator.CHAPNAMEINITATORVERTARGET);
        op.add("CHAPPASSWORDINITATORVERTARGET", initiator.CHAPPASSWORDINITATORVERTARGET);
    }
}

void addChapOnModify(Operation& op, const IscsiInitiatorMO& initiator, const IscsiInitiatorMO& current)
{
    if (addChapModes(op, initiator) && !initiator.CHAPPASSWORD.empty()) {
        op.add("CHAPNAME", initiator.CHAPNAME);
        op.add("CHAPPASSWORD", initiator.CHAPPASSWORD);
        if (current.USECHAP) {
            op.add("CHAPOLDPASSWORD", initiator.CHAPOLDPASSWORD);
        }
    }
    if (initiator.USECHAP && isMutual(initiator) && !initiator.CHAPPASSWORDINITATORVERTARGET.empty()) {
        op.add("CHAPNAMEINITATORVERTARGET", initiator.CHAPNAMEINITATORVERTARGET);
        op.add("CHAPPASSWORDINITATORVERTARGET", initiator.CHAPPASSWORDINITATORVERTARGET);
        if (current.USECHAP && isMutual(current)) {
            op.add("CHAPOLDPASSWORDINITATORVERTARGET", initiator.CHAPOLDPASSWORDINITATORVERTARGET);
        }
    }
}

} // namespace

IscsiInitiatorMO CIscsiInitiatorHandlerImpl::createIscsiInitiator(IscsiInitiatorMO& initiator)
{
    // Create and modify close with their enter text: docs/oddities.md#closing-line
    const Frame frame = Frame("createIscsiInitiator").closingAsEntered();
    return run(frame, [&](Operation& op) {
        op.requireId(initiator.ID, texts::ISCSI_INITIATOR_ID);
        op.add("ID", initiator.ID);
        op.addIfSet("PARENTID", initiator.PARENTID);
        if (initiator.PARENTTYPE != 0) {
            op.add("PARENTTYPE", static_cast<int>(initiator.PARENTTYPE));
        }
        addChapOnCreate(op, initiator);
        op.addIfSet("NAME", initiator.NAME);
        return getIscsiInitiator(op.post("/iscsi_initiator").id());
    });
}

void CIscsiInitiatorHandlerImpl::modifyIscsiInitiator(IscsiInitiatorMO& initiator)
{
    run(Frame("modifyIscsiInitiator").closingAsEntered(), [&](Operation& op) {
        const IscsiInitiatorMO current = getIscsiInitiator(initiator.ID);
        op.requireId(initiator.ID, texts::ISCSI_INITIATOR_ID);
        op.add("ID", initiator.ID);
        addChapOnModify(op, initiator, current);
        op.addIfSet("NAME", initiator.NAME);
        if (!initiator.PARENTID.empty()) {
            op.add("PARENTID", initiator.PARENTID);
            op.add("PARENTTYPE", int{MO_HOST}); // whatever the record holds
        }
        op.put("/iscsi_initiator"); // docs/oddities.md#initiator-in-the-body
    });
}

IscsiInitiatorMO CIscsiInitiatorHandlerImpl::getIscsiInitiator(const std::string& iscsiInitiatorID)
{
    return run("getIscsiInitiator", [&](Operation& op) {
        op.requireId(iscsiInitiatorID, texts::ISCSI_INITIATOR_ID);
        return op.get("/iscsi_initiator/" + urlValue(iscsiInitiatorID)).readAny<IscsiInitiatorMO>();
    });
}

void CIscsiInitiatorHandlerImpl::deleteIscsiInitiator(const std::string& iscsiInitiatorID)
{
    deleteById("deleteIscsiInitiator", "/iscsi_initiator/", iscsiInitiatorID, texts::ISCSI_INITIATOR_ID);
}

void CIscsiInitiatorHandlerImpl::addIscsiInitiatorToHost(const std::string& iscsiInitiatorID,
                                                         const std::string& hostID)
{
    run("addIscsiInitiatorToHost", [&](Operation& op) {
        op.requireId(iscsiInitiatorID, texts::ISCSI_INITIATOR_ID);
        op.requireId(hostID, texts::HOST_ID);
        op.add("PARENTTYPE", int{MO_HOST});
        op.add("PARENTID", hostID);
        op.put("/iscsi_initiator/" + urlValue(iscsiInitiatorID));
    });
}

void CIscsiInitiatorHandlerImpl::removeIscsiInitiatorFromHost(const std::string& iscsiInitiatorID)
{
    run("removeIscsiInitiatorFromHost", [&](Operation& op) {
        op.requireId(iscsiInitiatorID, texts::ISCSI_INITIATOR_ID);
        op.add("ID", iscsiInitiatorID);
        op.put("/iscsi_initiator/remove_iscsi_from_host");
    });
}
