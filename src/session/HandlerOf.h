#ifndef SESSION_HANDLEROF_H
#define SESSION_HANDLEROF_H

#include "session/Operation.h"

#include <functional>

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

    /** The operation that reads the object whose ID is the end of a path. */
    template <class Record>
    Record readById(const char* operation, const std::string& path, const std::string& id,
                    const IdArgument& argument)
    {
        return run(operation, [&](Operation& op) {
            op.requireId(id, argument);
            return op.get(path + urlValue(id)).template read<Record>();
        });
    }

    /** The operation that deletes such an object. */
    void deleteById(const Frame& frame, const std::string& path, const std::string& id,
                    const IdArgument& argument)
    {
        run(frame, [&](Operation& op) {
            op.requireId(id, argument);
            op.del(path + urlValue(id));
        });
    }

    /** The objects that are associated with another one, each read in full. */
    template <class Record, class Query>
    std::vector<Record> list(Operation& op, unsigned long otherType, const std::string& otherId,
                             const Query& query, Read<Record> read)
    {
        using Table = FieldTable<Record>;
        op.names(kinds::of(otherType), otherId);
        return list(op,
                    Table::LIST + op.filter(query.filter) + associationOf(Table::TYPE, otherType, otherId) +
                        rangeOf(query.start, query.count, "&"),
                    read);
    }

    /** All objects of a kind, each read in full. */
    template <class Record, class Query>
    std::vector<Record> listAll(Operation& op, const std::string& path, const Query& query, Read<Record> read)
    {
        // No "&" of the range's own: docs/oddities.md#filter-without-range
        return list(op, path + op.filter(query.filter) + rangeOf(query.start, query.count, ""), read);
    }

    /** The objects that the answer to a GET names, each read in full. */
    template <class Record>
    std::vector<Record> list(Operation& op, const std::string& url, Read<Record> read)
    {
        return op.getIds(url).readEach([&](const std::string& id) { return std::invoke(read, this, id); });
    }

    CDeviceManagerImpl* m_pDeviceManager = nullptr; ///< not owned
};

} // namespace ovra::tessel

#endif
