#ifndef SUPPORT_EVERYOPERATION_H
#define SUPPORT_EVERYOPERATION_H

#include <tessel/Tessel.h>

#include <functional>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace tessel_test {

/** One operation of the public interface, with arguments that it takes. */
struct PublicOperation
{
    const char* name;
    std::function<void(CDeviceManager&)> call;
};

template <class Query>
void fill(Query&, ...)
{
}

template <class Record>
auto fill(Record& record, int) -> decltype(record.NAME = "", void())
{
    record.NAME = "one";
    record.ID = "1";
    if constexpr (std::is_same_v<Record, LunMO>) {
        record.PARENTID = "0";
        record.CAPACITY = 1048576;
    }
}

/** An argument of each type: IDs are "1", and records have what a create needs. */
template <class Type>
Type argument()
{
    if constexpr (std::is_same_v<Type, std::string>) {
        return "1";
    } else {
        Type record;
        fill(record, 0);
        return record;
    }
}

template <class Handler, class Result, class... Arguments>
std::function<void(CDeviceManager&)> calling(Result (Handler::*operation)(Arguments...))
{
    return [operation](CDeviceManager& manager) {
        std::tuple<std::decay_t<Arguments>...> arguments{argument<std::decay_t<Arguments>>()...};
        std::apply([&](auto&... each) { (ovra::tessel::handlerOf<Handler>(manager).*operation)(each...); },
                   arguments);
    };
}

/** All operations of the handlers: 62. */
inline std::vector<PublicOperation> operationsOfHandlers()
{
    using ovra::tessel::handlerOf;
    return {
        {"createLun", calling(&CLunHandler::createLun)},
        {"getLun", calling(&CLunHandler::getLun)},
        {"getLunByLunGroup", calling(&CLunHandler::getLunByLunGroup)},
        {"getLunByHost", calling(&CLunHandler::getLunByHost)},
        {"createLunGroup", calling(&CLunGroupHandler::createLunGroup)},
        {"deleteLunGroup", calling(&CLunGroupHandler::deleteLunGroup)},
        {"getLunGroup", calling(&CLunGroupHandler::getLunGroup)},
        {"addLunToLunGroup", calling(&CLunGroupHandler::addLunToLunGroup)},
        {"removeLunFromLunGroup", calling(&CLunGroupHandler::removeLunFromLunGroup)},
        {"getLunGroupByLun", calling(&CLunGroupHandler::getLunGroupByLun)},
        {"getLunGroupByMappingView", calling(&CLunGroupHandler::getLunGroupByMappingView)},
        {"addSnapshotToLunGroup", calling(&CLunGroupHandler::addSnapshotToLunGroup)},
        {"removeSnapshotFromLunGroup", calling(&CLunGroupHandler::removeSnapshotFromLunGroup)},
        {"getLunGroupBySnapshot", calling(&CLunGroupHandler::getLunGroupBySnapshot)},
        {"getObjNOFromLunGroup", calling(&CLunGroupHandler::getObjNOFromLunGroup)},
        {"getSnapshot", calling(&CSnapshotHandler::getSnapshot)},
        {"getSnapshotByLunGroup", calling(&CSnapshotHandler::getSnapshotByLunGroup)},
        {"getSnapshotByHost", calling(&CSnapshotHandler::getSnapshotByHost)},
        {"getSnapshotByCondition",
         [](CDeviceManager& m) {
             SnapshotQuery query;
             handlerOf<CSnapshotHandler>(m).getSnapshotByCondition("1", MO_HOST, query,
                                                                   "getSnapshotByCondition");
         }},
        {"createHost", calling(&CHostHandler::createHost)},
        {"getHost", calling(&CHostHandler::getHost)},
        {"createHostGroup", calling(&CHostGroupHandler::createHostGroup)},
        {"deleteHostGroup", calling(&CHostGroupHandler::deleteHostGroup)},
        {"getHostGroup", calling(&CHostGroupHandler::getHostGroup)},
        {"addHostToHostGroup", calling(&CHostGroupHandler::addHostToHostGroup)},
        {"getHostGroupByHost", calling(&CHostGroupHandler::getHostGroupByHost)},
        {"getHostGroupByMappingView", calling(&CHostGroupHandler::getHostGroupByMappingView)},
        {"removeHostFromHostGroup", calling(&CHostGroupHandler::removeHostFromHostGroup)},
        {"createIscsiInitiator", calling(&CIscsiInitiatorHandler::createIscsiInitiator)},
        {"deleteIscsiInitiator", calling(&CIscsiInitiatorHandler::deleteIscsiInitiator)},
        {"modifyIscsiInitiator", calling(&CIscsiInitiatorHandler::modifyIscsiInitiator)},
        {"getIscsiInitiator", calling(&CIscsiInitiatorHandler::getIscsiInitiator)},
        {"addIscsiInitiatorToHost", calling(&CIscsiInitiatorHandler::addIscsiInitiatorToHost)},
        {"removeIscsiInitiatorFromHost", calling(&CIscsiInitiatorHandler::removeIscsiInitiatorFromHost)},
        {"createFCInitiator", calling(&CFCInitiatorHandler::createFCInitiator)},
        {"deleteFCInitiator", calling(&CFCInitiatorHandler::deleteFCInitiator)},
        {"getFCInitiator", calling(&CFCInitiatorHandler::getFCInitiator)},
        {"addFCInitiatorToHost", calling(&CFCInitiatorHandler::addFCInitiatorToHost)},
        {"removeFCInitiatorFromHost", calling(&CFCInitiatorHandler::removeFCInitiatorFromHost)},
        {"createMappingView", calling(&CMappingViewHandler::createMappingView)},
        {"deleteMappingView", calling(&CMappingViewHandler::deleteMappingView)},
        {"getMappingView", calling(&CMappingViewHandler::getMappingView)},
        {"addLunGroupToMappingView", calling(&CMappingViewHandler::addLunGroupToMappingView)},
        {"removeLunGroupFromMappingView", calling(&CMappingViewHandler::removeLunGroupFromMappingView)},
        {"addHostGroupToMappingView", calling(&CMappingViewHandler::addHostGroupToMappingView)},
        {"removeHostGroupFromMappingView", calling(&CMappingViewHandler::removeHostGroupFromMappingView)},
        {"getMappingViewByLunGroup", calling(&CMappingViewHandler::getMappingViewByLunGroup)},
        {"getMappingViewByHostGroup", calling(&CMappingViewHandler::getMappingViewByHostGroup)},
        {"getFCPort", calling(&CFCPortHandler::getFCPort)},
        {"getFCPortBatch", calling(&CFCPortHandler::getFCPortBatch)},
        {"getFCoEPort", calling(&CFCoEPortHandler::getFCoEPort)},
        {"getFCoEPortBatch", calling(&CFCoEPortHandler::getFCoEPortBatch)},
        {"getETHPort", calling(&CETHPortHandler::getETHPort)},
        {"getETHPortBatch", calling(&CETHPortHandler::getETHPortBatch)},
        {"attachLunToHost", calling(&CDiskAttachHandler::attachLunToHost)},
        {"detachLunFromHost", calling(&CDiskAttachHandler::detachLunFromHost)},
        {"attachSnapshotToHost", calling(&CDiskAttachHandler::attachSnapshotToHost)},
        {"detachSnapshotFromHost", calling(&CDiskAttachHandler::detachSnapshotFromHost)},
        {"scanLunAfterAttach", calling(&CDiskScannerHandler::scanLunAfterAttach)},
        {"scanSnapshotAfterAttach", calling(&CDiskScannerHandler::scanSnapshotAfterAttach)},
        {"scanLunBeforeDetach", calling(&CDiskScannerHandler::scanLunBeforeDetach)},
        {"scanSnapshotBeforeDetach", calling(&CDiskScannerHandler::scanSnapshotBeforeDetach)},
    };
}

} // namespace tessel_test

#endif
