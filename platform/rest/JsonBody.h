#ifndef OVRA_REST_JSONBODY_H
#define OVRA_REST_JSONBODY_H

#include <string>
#include <utility>
#include <vector>

namespace ovra::rest {

/** A text as JSON string, quotes included; bytes that are not UTF-8 become U+FFFD. */
std::string jsonString(const std::string& text);

/** The JSON object of a request: members in the order in which they were added. */
class JsonBody
{
public:
    JsonBody() = default;
    ~JsonBody();
    JsonBody(const JsonBody&) = delete;
    JsonBody& operator=(const JsonBody&) = delete;

    /** Adds a member; a key that is there already keeps its place and gets the new value. */
    void add(const std::string& key, const std::string& value);
    void add(const std::string& key, bool value);
    void add(const std::string& key, int value);
    void add(const std::string& key, unsigned long value);
    void add(const std::string& key, unsigned long long value);

    bool empty() const { return m_members.empty(); }
    std::string text() const;

private:
    void put(const std::string& key, std::string json);

    std::vector<std::pair<std::string, std::string>> m_members; ///< key and value as JSON text
};

/** Overwrites a text that was a secret. */
void wipe(std::string& secret);

} // namespace ovra::rest

#endif
