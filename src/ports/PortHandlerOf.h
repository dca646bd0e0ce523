#ifndef PORTS_PORTHANDLEROF_H
#define PORTS_PORTHANDLEROF_H

#include "session/HandlerOf.h"

namespace ovra::tessel {

/** The two operations of every kind of port; the kinds differ in their names, their resource and their
 * record. */
template <class Interface, class Port, class Query>
class PortHandlerOf : public HandlerOf<Interface>
{
public:
    using HandlerOf<Interface>::HandlerOf;

protected:
    Port readPort(const char* operation, const std::string& resource, const std::string& id,
                  const char* textIfEmpty)
    {
        return this->run(operation, [&](Operation& op) {
            op.requireId(id, textIfEmpty);
            return op.get(resource + "/" + urlValue(id)).template read<Port>();
        });
    }

    std::vector<Port> readBatch(const char* operation, const std::string& resource, const Query& query,
                                Port (Interface::*read)(const std::string&))
    {
        return this->run(operation, [&](Operation& op) {
            // No "&" of the range's own: the filter ends in one, also when no range follows.
            return this->expand(
                op.get(resource + "?" + op.filter(query.filter) + rangeOf(query.start, query.count, "")),
                read);
        });
    }
};

} // namespace ovra::tessel

#endif
