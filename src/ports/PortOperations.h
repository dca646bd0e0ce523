#ifndef PORTS_PORTOPERATIONS_H
#define PORTS_PORTOPERATIONS_H

#include "session/Operation.h"
#include "session/Url.h"

namespace ovra::tessel {

/** The two operations of every kind of port; the kinds differ in their names, their resource and their
 * record. */
namespace ports {

template <class Port>
Port readOne(const char* operation, CDeviceManagerImpl* deviceManager, const std::string& resource,
             const std::string& id, const char* idEmpty)
{
    return Operation::run(operation, deviceManager, [&](Operation& op) {
        op.require(!id.empty(), idEmpty);
        return op.get(resource + "/" + urlValue(id)).read<Port>();
    });
}

template <class Query, class ReadOne>
auto readBatch(const char* operation, CDeviceManagerImpl* deviceManager, const std::string& resource,
               const Query& query, ReadOne readOne)
{
    using Port = decltype(query.filter);
    return Operation::run(operation, deviceManager, [&](Operation& op) {
        const std::string filter = filterOf(query.filter, &Port::ID, &Port::NAME, &Port::LOGICTYPE);
        // No "&" of the range's own: the filter ends in one, also when no range follows.
        return op.get(resource + "?" + filter + rangeOf(query.start, query.count, "")).readEach(readOne);
    });
}

} // namespace ports

} // namespace ovra::tessel

#endif
