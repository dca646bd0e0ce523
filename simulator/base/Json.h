#ifndef SIMULATOR_BASE_JSON_H
#define SIMULATOR_BASE_JSON_H

#include <json/json.h>

#include <set>
#include <string>
#include <vector>

namespace arraysim {

/** The type of every body. */
constexpr const char* JSON_TYPE = "application/json";

/** Reads any JSON value, strictly. @return false where the text is none */
bool readJson(const std::string& text, Json::Value& value);

/** Reads one JSON object, strictly. Throws ArrayError (BODY_MALFORMED). */
Json::Value parseBody(const std::string& text);

/** Refuses members outside allowed with ArrayError (MEMBER_UNKNOWN). */
void allowMembers(const Json::Value& body, const std::set<std::string>& allowed);

/** A member that must be a text with at least one character. Throws ArrayError. */
std::string requiredText(const Json::Value& body, const std::string& key);

/** A member that must be a whole number that fits an int. Throws ArrayError. */
int requiredNumber(const Json::Value& body, const std::string& key);

/** One line of JSON without blanks, UTF-8 as it is. */
std::string jsonText(const Json::Value& value);

/** The same for a member that may be missing; a number must not be negative. */
unsigned numberIn(const Json::Value& body, const char* key, unsigned otherwise);
std::string textIn(const Json::Value& body, const char* key, const std::string& otherwise);

} // namespace arraysim

#endif
