#ifndef SIMULATOR_MODEL_STORE_H
#define SIMULATOR_MODEL_STORE_H

#include "model/Object.h"

#include <functional>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace arraysim {

/**
 * The array's disk: objects and associations in one SQLite file. Writes need no disk flush of their
 * own (write-ahead log), so an operation costs microseconds; a power failure may lose the last ones.
 */
class Store
{
public:
    explicit Store(const std::string& file);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    void begin();
    void commit();
    void rollback() noexcept;

    void putObject(Type type, const Object& object);
    void eraseObject(Type type, const std::string& id);
    void putLink(const ObjectKey& owner, const ObjectKey& member);
    void eraseLink(const ObjectKey& owner, const ObjectKey& member);
    void putSetting(const std::string& key, const std::string& value);
    std::string setting(const std::string& key);

    void readObjects(const std::function<void(Type, Object)>& take);
    void readLinks(const std::function<void(const ObjectKey& owner, const ObjectKey& member)>& take);

private:
    class Statement;
    sqlite3_stmt* prepared(const char* sql);

    sqlite3* m_db = nullptr;
    std::map<const char*, sqlite3_stmt*> m_statements;
};

} // namespace arraysim

#endif
