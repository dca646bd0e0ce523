#include "ports/FCPortHandlerImpl.h"

#include "ports/FCPortFields.h"

using namespace ovra::tessel;

namespace {

constexpr const char* RESOURCE = "/FC_PORT";

} // namespace

FCPortMO CFCPortHandlerImpl::getFCPort(const std::string& fcPortID)
{
    return readPort("getFCPort", RESOURCE, fcPortID, "fcPortID is empty! ");
}

std::vector<FCPortMO> CFCPortHandlerImpl::getFCPortBatch(FCPortQuery& query)
{
    return readBatch("getFCPortBatch", RESOURCE, query, &CFCPortHandler::getFCPort);
}
