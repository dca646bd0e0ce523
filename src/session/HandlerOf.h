#ifndef SESSION_HANDLEROF_H
#define SESSION_HANDLEROF_H

#include "session/Operation.h"

namespace ovra::tessel {

/** What every handler implementation is beside its interface: it knows the device manager that made it. */
template <class Interface>
class HandlerOf : public Interface
{
public:
    HandlerOf() = default;
    explicit HandlerOf(CDeviceManagerImpl* deviceManager) : m_pDeviceManager(deviceManager) {}
    ~HandlerOf() override { m_pDeviceManager = nullptr; }

protected:
    /** Reads one object in full by its ID. */
    template <class Record>
    using Read = Record (Interface::*)(const std::string&);

    template <class Body>
    auto run(const Frame& frame, Body&& body)
    {
        return Operation::run(frame, m_pDeviceManager, body);
    }

    /** The objects that an answer names, each read in full. */
    template <class Record>
    std::vector<Record> expand(const Answer& answer, Read<Record> read)
    {
        return answer.readEach([&](const std::string& id) { return (this->*read)(id); });
    }

    /** The objects that are associated with another one, each read in full. */
    template <class Record, class Query>
    std::vector<Record> list(Operation& op, unsigned long otherType, const std::string& otherId,
                             const Query& query, Read<Record> read)
    {
        using Table = FieldTable<Record>;
        return expand(op.get(Table::LIST + op.filter(query.filter) +
                             associationOf(Table::TYPE, otherType, otherId) +
                             rangeOf(query.start, query.count, "&")),
                      read);
    }

    CDeviceManagerImpl* m_pDeviceManager = nullptr; ///< not owned
};

} // namespace ovra::tessel

#endif
