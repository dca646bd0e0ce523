#include "model/Store.h"

#include "base/Json.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <stdexcept>

namespace arraysim {

/** One run of a prepared statement; it is reset whichever way the run ends. */
class Store::Statement
{
public:
    Statement(Store& store, const char* sql) : m_store(store), m_handle(store.prepared(sql)) {}
    ~Statement() { sqlite3_reset(m_handle); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& bind(const std::string& text)
    {
        check(sqlite3_bind_text(m_handle, ++m_bound, text.data(), static_cast<int>(text.size()),
                                SQLITE_TRANSIENT));
        return *this;
    }
    Statement& bind(Type type)
    {
        check(sqlite3_bind_int(m_handle, ++m_bound, static_cast<int>(type)));
        return *this;
    }
    Statement& bind(const ObjectKey& key) { return bind(key.first).bind(key.second); }
    bool step()
    {
        const int result = sqlite3_step(m_handle);
        if (result != SQLITE_ROW && result != SQLITE_DONE) {
            check(result);
        }
        return result == SQLITE_ROW;
    }
    std::string text(int column)
    {
        const unsigned char* value = sqlite3_column_text(m_handle, column);
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_handle, column));
        return value == nullptr ? std::string() : std::string(value, value + size);
    }
    Type type(int column) { return static_cast<Type>(sqlite3_column_int(m_handle, column)); }

private:
    void check(int result)
    {
        if (result != SQLITE_OK) {
            throw std::runtime_error(std::string("the state cannot be kept: ") +
                                     sqlite3_errmsg(m_store.m_db));
        }
    }

    Store& m_store;
    sqlite3_stmt* m_handle;
    int m_bound = 0;
};

Store::Store(const std::string& file)
{
    static constexpr const char* SCHEMA =
        "PRAGMA journal_mode=WAL; PRAGMA synchronous=OFF;"
        "CREATE TABLE IF NOT EXISTS objects(type INTEGER, id TEXT, fields TEXT, PRIMARY KEY(type, id)) "
        "WITHOUT ROWID;"
        "CREATE TABLE IF NOT EXISTS links(owner_type INTEGER, owner TEXT, member_type INTEGER, member TEXT,"
        " PRIMARY KEY(owner_type, owner, member_type, member)) WITHOUT ROWID;"
        "CREATE TABLE IF NOT EXISTS settings(key TEXT PRIMARY KEY, value TEXT) WITHOUT ROWID;";
    // SQLite gives its other files the mode of this one, which holds CHAP secrets.
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    if (sqlite3_open(file.c_str(), &m_db) != SQLITE_OK ||
        sqlite3_exec(m_db, SCHEMA, nullptr, nullptr, nullptr) != SQLITE_OK) {
        const std::string why = sqlite3_errmsg(m_db);
        sqlite3_close(m_db);
        throw std::runtime_error("cannot open " + file + ": " + why);
    }
}

Store::~Store()
{
    for (const auto& entry : m_statements) {
        sqlite3_finalize(entry.second);
    }
    sqlite3_close(m_db);
}

sqlite3_stmt* Store::prepared(const char* sql)
{
    sqlite3_stmt*& statement = m_statements[sql];
    if (statement == nullptr &&
        sqlite3_prepare_v3(m_db, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK) {
        throw std::runtime_error(std::string("the state cannot be read: ") + sqlite3_errmsg(m_db));
    }
    return statement;
}

void Store::begin()
{
    Statement(*this, "BEGIN IMMEDIATE").step();
}

void Store::commit()
{
    Statement(*this, "COMMIT").step();
}

void Store::rollback() noexcept
{
    sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
}

void Store::putObject(Type type, const Object& object)
{
    Json::Value fields(Json::objectValue);
    for (const auto& [key, value] : object.values) {
        fields[key] = value;
    }
    Statement(*this, "INSERT OR REPLACE INTO objects VALUES(?, ?, ?)")
        .bind(type)
        .bind(object.id)
        .bind(jsonText(fields))
        .step();
}

void Store::eraseObject(Type type, const std::string& id)
{
    Statement(*this, "DELETE FROM objects WHERE type = ? AND id = ?").bind(type).bind(id).step();
}

void Store::putLink(const ObjectKey& owner, const ObjectKey& member)
{
    Statement(*this, "INSERT OR IGNORE INTO links VALUES(?, ?, ?, ?)").bind(owner).bind(member).step();
}

void Store::eraseLink(const ObjectKey& owner, const ObjectKey& member)
{
    Statement(*this,
              "DELETE FROM links WHERE owner_type = ? AND owner = ? AND member_type = ? AND member = ?")
        .bind(owner)
        .bind(member)
        .step();
}

void Store::putSetting(const std::string& key, const std::string& value)
{
    Statement(*this, "INSERT OR REPLACE INTO settings VALUES(?, ?)").bind(key).bind(value).step();
}

std::string Store::setting(const std::string& key)
{
    Statement statement(*this, "SELECT value FROM settings WHERE key = ?");
    return statement.bind(key).step() ? statement.text(0) : std::string();
}

void Store::readObjects(const std::function<void(Type, Object)>& take)
{
    Statement row(*this, "SELECT type, id, fields FROM objects");
    while (row.step()) {
        Object object;
        object.id = row.text(1);
        const Json::Value fields = parseBody(row.text(2));
        for (const auto& key : fields.getMemberNames()) {
            object.values[key] = fields[key].asString();
        }
        take(row.type(0), std::move(object));
    }
}

void Store::readLinks(const std::function<void(const ObjectKey& owner, const ObjectKey& member)>& take)
{
    Statement row(*this, "SELECT owner_type, owner, member_type, member FROM links");
    while (row.step()) {
        take({row.type(0), row.text(1)}, {row.type(2), row.text(3)});
    }
}

} // namespace arraysim
