#include "observer/AuditRecord.h"

#include <tessel/Exception.h>

#include <cctype>
#include <dlfcn.h>
#include <sys/uio.h>

namespace ovra::tessel {
namespace {

constexpr const char* LIBRARY = "libsystemd.so.0";
using Send = int (*)(const iovec*, int);

/** "lockSeconds" -> "TESSEL_LOCK_SECONDS" */
std::string fieldName(const std::string& member)
{
    std::string name = "TESSEL_";
    for (const char c : member) {
        const auto letter = static_cast<unsigned char>(c);
        name += std::isupper(letter) != 0 ? "_" : "";
        name += static_cast<char>(std::toupper(letter));
    }
    return name;
}

class Journal final : public AuditObserver
{
public:
    explicit Journal(Send send) : m_send(send) {}

private:
    void write(const Json::Value& record, bool isDone) override
    {
        std::vector<std::string> fields = {"MESSAGE=" + lineOf(record), isDone ? "PRIORITY=6" : "PRIORITY=4"};
        for (const std::string& member : record.getMemberNames()) {
            fields.push_back(fieldName(member) + "=" + record[member].asString());
        }
        std::vector<iovec> parts;
        parts.reserve(fields.size());
        for (std::string& field : fields) {
            parts.push_back({field.data(), field.size()});
        }
        m_send(parts.data(), static_cast<int>(parts.size()));
    }

    const Send m_send;
};

} // namespace

std::shared_ptr<Observer> auditJournal()
{
    // Stays loaded: an observer may be at work when the last one that asked for it is gone.
    static void* const library = dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL);
    void* const symbol = library == nullptr ? nullptr : dlsym(library, "sd_journal_sendv");
    if (symbol == nullptr) {
        throw OvraAPIException(std::string("this host has no ") + LIBRARY + "! auditJournal");
    }
    return std::make_shared<Journal>(reinterpret_cast<Send>(symbol));
}

} // namespace ovra::tessel
