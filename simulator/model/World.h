#ifndef SIMULATOR_MODEL_WORLD_H
#define SIMULATOR_MODEL_WORLD_H

#include "model/ObjectType.h"
#include "model/Store.h"

#include <mutex>
#include <unordered_map>

namespace arraysim {

/** Is told of every association that comes or goes, before it does, and of the end of the operation. */
class LinkObserver
{
public:
    virtual ~LinkObserver() = default;
    virtual void linkChanges(const ObjectKey& owner, const ObjectKey& member) = 0;
    virtual void committed() = 0;
    virtual void rolledBack() = 0;
};

/** How many reads by ID a new object refuses: LUN groups with a code of their own. */
struct Settling
{
    unsigned reads = 0;
    unsigned lunGroupReads = 0;
};

/** A list of so many is kept, to be paged through. */
constexpr std::size_t MANY = 100;

/** A list that takes long to make, as far as somebody asked for it. */
struct LongList
{
    std::shared_ptr<std::vector<std::string>> ids; ///< null: nothing yet
    std::size_t seen = 0;                          ///< so many of all have been before the filter
};

/** Tells one such list from all others: what it is a list of, and its filter. */
using ListName = std::vector<std::string>;
/** The objects of a type that are associated with one object. */
ListName listName(Type type, const ObjectKey& of);

/**
 * The objects of the array and their associations, in memory and on the store. Hold lock() while
 * reading or writing, and change it only within a Transaction.
 */
class World
{
public:
    explicit World(Store& store);

    /** Holds the world; its end does what afterwards() was given meanwhile. */
    class Lock
    {
    public:
        explicit Lock(World& world) : m_world(world), m_held(world.m_mutex) {}
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        World& m_world;
        std::unique_lock<std::mutex> m_held;
    };
    Lock lock() { return Lock(*this); }
    /** Something slow that belongs to an operation, to be done without the lock. It must not throw. */
    void afterwards(std::function<void()> work) { m_afterwards.push_back(std::move(work)); }

    /** Null where there is no such object. */
    const Object* find(Type type, const std::string& id) const;
    /** Throws ArrayError (OBJECT_MISSING). */
    const Object& at(Type type, const std::string& id) const;
    const ObjectMap& all(Type type) const;
    /** The IDs of all objects of a type, to be paged through: the list is kept until one comes or goes. */
    IdList ids(Type type) const;
    /** The objects of type to that are directly associated with the object. */
    const IdSet& linked(const ObjectKey& object, Type to) const;
    /** The same in order, to be paged through: where they are many, the list is kept until they change. */
    IdList ordered(const ObjectKey& object, Type to) const;
    /** What is kept of a list. */
    LongList kept(const ListName& name) const;
    /** Keeps a list until anything changes. */
    void keep(const ListName& name, LongList list) const;
    /** The ID of the object that has this value in a unique field, or null. */
    const std::string* holder(Type type, const std::string& key, const std::string& value) const;
    /** The next ID that the array would give; IDs are not used again. */
    std::string nextId(Type type) const;
    const std::string& deviceId() const { return m_deviceId; }

    void put(Type type, Object object);
    /** Removes the object and its associations. */
    void erase(Type type, const std::string& id);
    void link(const ObjectKey& owner, const ObjectKey& member);
    void unlink(const ObjectKey& owner, const ObjectKey& member);
    /** Counts one read by ID; true while the object is not readable yet. */
    bool stillSettling(Type type, const std::string& id);
    /** Puts the factory state in place of everything. */
    void reset();

    Settling settling;
    /** Observers are told in the order in which they came. */
    void observe(LinkObserver* observer) { m_observers.push_back(observer); }
    void ignore(LinkObserver* observer);

    /**
     * One operation: its changes are kept by commit(), or undone when it goes without. Within another
     * transaction it is a part of that one.
     */
    class Transaction
    {
    public:
        explicit Transaction(World& world) : m_world(world) { ++m_world.m_transactions; }
        ~Transaction();
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        void commit();

    private:
        World& m_world;
    };

private:
    struct Edges
    {
        std::map<std::string, IdSet, IdLess> of;
        mutable std::map<std::string, IdList> ordered; ///< of those with many neighbours that were asked for

        void insert(const std::string& id, const std::string& neighbour);
        void erase(const std::string& id, const std::string& neighbour);
    };

    void writing();
    void load();
    void remember(Type type, Object object);
    void forgetUnique(Type type, const std::string& id);
    void forget(Type type, const std::string& id);
    void connect(const ObjectKey& a, const ObjectKey& b);
    void countUp(Type type, const std::string& id);

    std::mutex m_mutex;
    Store& m_store;
    std::string m_deviceId;
    std::map<Type, ObjectMap> m_objects;
    mutable std::map<Type, IdList> m_ids;
    mutable std::map<ListName, LongList> m_kept;
    std::map<std::pair<Type, Type>, Edges> m_edges;
    std::map<std::pair<Type, std::string>, std::unordered_map<std::string, std::string>> m_unique;
    std::map<Type, unsigned long> m_lastId;
    std::vector<LinkObserver*> m_observers;
    std::vector<std::function<void()>> m_afterwards;
    int m_transactions = 0;
    bool m_writing = false;
};

} // namespace arraysim

#endif
