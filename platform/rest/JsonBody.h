#ifndef OVRA_REST_JSONBODY_H
#define OVRA_REST_JSONBODY_H

#include <ovra/text/Secret.h>

#include <string>
#include <utility>
#include <vector>

namespace ovra::rest {

/** A text as JSON string, quotes included; bytes that are not UTF-8 become U+FFFD. */
SecretText jsonString(std::string_view text);

/** The JSON object of a request: members in the order in which they were added. */
class JsonBody
{
public:
    /** Adds a member; a key that is there already keeps its place and gets the new value. */
    void add(const std::string& key, std::string_view value);
    void add(const std::string& key, bool value);
    void add(const std::string& key, int value);
    void add(const std::string& key, unsigned long value);
    void add(const std::string& key, unsigned long long value);

    bool empty() const { return m_members.empty(); }
    SecretText text() const;

private:
    void put(const std::string& key, SecretText json);

    std::vector<std::pair<std::string, SecretText>> m_members; ///< key and value as JSON text
};

} // namespace ovra::rest

#endif
