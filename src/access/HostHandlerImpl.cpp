#include "access/HostHandlerImpl.h"

#include "access/AccessFields.h"
#include "session/Retry.h"
#include "session/Texts.h"

using namespace ovra::tessel;

HostMO CHostHandlerImpl::createHost(HostMO& host)
{
    return run("createHost", [&](Operation& op) {
        op.addIfSet("ID", host.ID);
        op.add("TYPE", int{MO_HOST});
        op.require(!host.NAME.empty(), "Host name is empty! ");
        op.add("NAME", host.NAME);
        // A warning only: docs/oddities.md#operating-system-100
        op.expect(host.OPERATIONSYSTEM != HostMO().OPERATIONSYSTEM,
                  "OperationSystem value is initial value! ");
        op.add("OPERATIONSYSTEM", static_cast<int>(host.OPERATIONSYSTEM));
        if (host.PARENTTYPE != 0) {
            op.add("PARENTTYPE", static_cast<int>(host.PARENTTYPE));
        }
        op.addIfSet("PARENTID", host.PARENTID);
        op.addIfSet("LOCATION", host.LOCATION);
        op.addIfSet("DESCRIPTION", host.DESCRIPTION);
        op.addIfSet("IP", host.IP);
        const std::string id = op.post("/host").id();
        return retryWhile({ARRAY_NOT_READY}, "retry get host!", [&] { return getHost(id); });
    });
}

HostMO CHostHandlerImpl::getHost(const std::string& hostID)
{
    return readById<HostMO>("getHost", "/host/", hostID, texts::HOST_ID);
}
