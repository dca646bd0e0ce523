#ifndef TESSEL_HANDLERS_H
#define TESSEL_HANDLERS_H

/** @file
 * Handlers by their type. Header only. */

#include <tessel/DeviceManager.h>
#include <tessel/DiskAttach.h>
#include <tessel/DiskScanner.h>
#include <tessel/ETHPort.h>
#include <tessel/Exception.h>
#include <tessel/FCInitiator.h>
#include <tessel/FCPort.h>
#include <tessel/FCoEPort.h>
#include <tessel/Host.h>
#include <tessel/HostGroup.h>
#include <tessel/IscsiInitiator.h>
#include <tessel/Lun.h>
#include <tessel/LunGroup.h>
#include <tessel/MappingView.h>
#include <tessel/Pages.h>
#include <tessel/Snapshot.h>

#include <string>
#include <type_traits>
#include <vector>

namespace ovra {
namespace tessel {

// One line for each value of HANDLERTYPE. Exact types, so that no derived class is taken for its base.
/** @cond */
template <typename Interface>
struct HandlerTag
{
};
struct HandlerTypes
{
    static constexpr HANDLERTYPE of(HandlerTag<CLunHandler>) { return LUN_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CLunGroupHandler>) { return LUNGROUP_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CHostHandler>) { return HOST_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CHostGroupHandler>) { return HOSTGROUP_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CMappingViewHandler>) { return MAPPINGVIEW_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CIscsiInitiatorHandler>) { return ISCSIINITIATOR_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CSnapshotHandler>) { return SNAPSHOT_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CDiskAttachHandler>) { return DISKATTACH_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CDiskScannerHandler>) { return DISKSCANNER_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CFCInitiatorHandler>) { return FCINITIATOR_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CETHPortHandler>) { return ETHPORT_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CFCPortHandler>) { return FCPORT_HANDLER; }
    static constexpr HANDLERTYPE of(HandlerTag<CFCoEPortHandler>) { return FCOEPORT_HANDLER; }
};
/** @endcond */

/** The HANDLERTYPE of a handler interface, as value; another type than such an interface does not compile. */
template <typename Interface>
struct HandlerType : std::integral_constant<HANDLERTYPE, HandlerTypes::of(HandlerTag<Interface>())>
{
};

/**
 * A handler by its interface: handlerOf<CLunHandler>(manager). Another type than a handler's does not
 * compile.
 * @param manager the device manager.
 * @return the handler; belongs to the device manager.
 * @throws OvraAPIException when the device manager has none, as one of a test may.
 */
template <typename Interface>
Interface& handlerOf(CDeviceManager& manager)
{
    CHandler* const handler = manager.getHandler(HandlerType<Interface>::value);
    if (handler == nullptr) {
        throw OvraAPIException("the device manager has no such handler! handlerOf");
    }
    return static_cast<Interface&>(*handler);
}

/**
 * A handler, and beside it the same operations for what its fixed signatures do not take. It is a reference:
 * made in passing, copied freely, valid as long as the device manager. What a member of a derived class
 * throws and costs is told with the handler's operation of that name; of... and all() list by pages: the set
 * fields of the filter select, as in the handler's query, and pageSize records are read at a time.
 */
template <typename Interface>
class Face
{
public:
    /** Refers to a handler. @param handler outlives this object. */
    explicit Face(Interface& handler) : m_handler(&handler) {}
    /** @return the handler, for every operation it has. */
    Interface* operator->() const { return m_handler; }
    /** @return the handler. */
    Interface& operator*() const { return *m_handler; }

protected:
    /**
     * Pages of what an operation lists for an ID.
     * @param operation,id,filter,pageSize what is called, with what, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    template <typename Query, typename Record>
    Pages<Record> pages(std::vector<Record> (Interface::*operation)(const std::string&, Query&),
                        const std::string& id, const Record& filter, unsigned long pageSize) const
    {
        Interface* const handler = m_handler;
        return pagesOf<Query>([=](Query& query) { return (handler->*operation)(id, query); }, filter,
                              pageSize);
    }
    /**
     * Pages of what an operation lists.
     * @param operation,filter,pageSize what is called, with what, and the records of a page.
     * @return the list; nothing of it is read yet.
     */
    template <typename Query, typename Record>
    Pages<Record> pages(std::vector<Record> (Interface::*operation)(Query&), const Record& filter,
                        unsigned long pageSize) const
    {
        Interface* const handler = m_handler;
        return pagesOf<Query>([=](Query& query) { return (handler->*operation)(query); }, filter, pageSize);
    }

private:
    template <typename Query, typename Record, typename List>
    static Pages<Record> pagesOf(const List& list, const Record& filter, unsigned long pageSize)
    {
        return Pages<Record>(
            [=](unsigned long start, unsigned long count) {
                Query query;
                query.filter = filter;
                query.start = start;
                query.count = count;
                return list(query);
            },
            pageSize);
    }

    Interface* m_handler;
};

} // namespace tessel
} // namespace ovra

#endif
