#include "objects/Membership.h"

#include "session/Advice.h"

namespace tesselctl {
namespace {

void change(Context& context, const ObjectKind& owner, const Member& member, bool adding)
{
    const std::string ownerId = context.text(owner.idName);
    const std::string memberId = context.text(member.option.name);
    Session& session = context.session();
    const std::string both =
        member.title + " " + memberId + (adding ? " to " : " from ") + owner.title + " " + ownerId;
    Json::Value more(Json::objectValue);
    more["member"] = member.title;
    more["memberId"] = memberId;
    more["wasMember"] = !adding;
    // What is to be done may be the case already; the SDK does not tell.
    const auto isDone = [&] { return member.holds && member.holds(session, memberId, ownerId) == adding; };
    const auto work = [&] {
        if (isDone()) {
            more["wasMember"] = adding;
        } else {
            (adding ? member.add : member.remove)(session, memberId, ownerId);
        }
    };
    withObjects(session, {{owner.title, ownerId}, {member.title, memberId}}, work);
    if (more["wasMember"] == adding) {
        tellAction(context, owner, ownerId, adding ? "add" : "remove",
                   member.title + " " + memberId + (adding ? " was in " : " was not in ") + owner.title +
                       " " + ownerId + (adding ? " already" : ""),
                   more);
        return;
    }
    if (member.holds && !isDone()) {
        throw Failure(std::string("the array did not ") + (adding ? "add " : "remove ") + both +
                      "; its words are in the run log, " + logDirectory());
    }
    tellAction(context, owner, ownerId, adding ? "add" : "remove", (adding ? "added " : "removed ") + both,
               more);
}

Command membershipCommand(const ObjectKind& owner, const std::vector<Member>& members, bool adding)
{
    Command command;
    command.path = owner.command(adding ? "add" : "remove");
    command.summary = adding ? "add a member to a " + owner.title : "remove a member from a " + owner.title;
    command.arguments = {owner.idArgument()};
    for (const auto& member : members) {
        command.options.push_back(member.option);
        command.exactlyOneOf.push_back(member.option.name);
    }
    command.run = [=](Context& context) {
        for (const auto& member : members) {
            if (context.has(member.option.name)) {
                change(context, owner, member, adding);
            }
        }
    };
    return command;
}

} // namespace

Commands membershipCommands(const ObjectKind& owner, const std::vector<Member>& members)
{
    return {membershipCommand(owner, members, true), membershipCommand(owner, members, false)};
}

} // namespace tesselctl
