#pragma once

#include <json/json.h>

#include <set>
#include <string>
#include <vector>

namespace arraysim {

/// The type of every body.
constexpr const char* jsonType = "application/json";

/// Reads one JSON object, strictly. Throws ArrayError (bodyMalformed).
Json::Value parseBody(const std::string& text);

/// Refuses members outside allowed with ArrayError (memberUnknown).
void allowMembers(const Json::Value& body, const std::set<std::string>& allowed);

/// A member that must be a text with at least one character. Throws ArrayError.
std::string requiredText(const Json::Value& body, const std::string& key);

/// A member that must be a whole number that fits an int. Throws ArrayError.
int requiredNumber(const Json::Value& body, const std::string& key);

/// The body for logs and the journal: as sent, but with every secret's value replaced by "***". A body
/// that is not JSON is not shown at all, since nothing tells where a secret stands in it.
std::string withoutSecrets(const std::string& text);

} // namespace arraysim
