#ifndef OBJECTS_MEMBERSHIP_H
#define OBJECTS_MEMBERSHIP_H

#include "objects/ObjectKind.h"

#include <algorithm>

namespace tesselctl {

/** What one type of member can do with an owner: the option that names it and the SDK's calls. */
struct Member
{
    Option option;
    std::string title;
    std::function<void(Session&, const std::string& member, const std::string& owner)> add;
    std::function<void(Session&, const std::string& member, const std::string& owner)> remove;
    /** Whether the owner holds the member; empty where the SDK reports failures itself. */
    std::function<bool(Session&, const std::string& member, const std::string& owner)> holds;
};

template <class Handler>
Member member(const char* option, const char* value, const char* title,
              void (Handler::*add)(const std::string&, const std::string&),
              void (Handler::*remove)(const std::string&, const std::string&))
{
    const auto call = [](auto operation) {
        return [operation](Session& session, const std::string& id, const std::string& owner) {
            (session.handler<Handler>().*operation)(id, owner);
        };
    };
    return {{option, value, std::string("the ") + title}, title, call(add), call(remove), nullptr};
}

/** `list(id, query)` of the SDK, asked for the one object `wanted`. */
template <class Record, class Query, class Handler>
bool lists(Session& session, std::vector<Record> (Handler::*list)(const std::string&, Query&),
           const std::string& id, const std::string& wanted)
{
    Query query;
    query.filter.ID = wanted;
    const auto records = (session.handler<Handler>().*list)(id, query);
    return std::any_of(records.begin(), records.end(),
                       [&](const Record& record) { return record.ID == wanted; });
}

/**
 * "add OWNER --member ID" and "remove OWNER --member ID". Where the SDK keeps failures of the array to
 * itself, the member is looked for afterwards.
 */
Commands membershipCommands(const ObjectKind& owner, const std::vector<Member>& members);

} // namespace tesselctl

#endif
