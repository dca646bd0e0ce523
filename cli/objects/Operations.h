#ifndef OBJECTS_OPERATIONS_H
#define OBJECTS_OPERATIONS_H

#include "objects/ObjectKind.h"

namespace tesselctl {

/** "show ID": one record as the array holds it. */
template <class Handler, class Record>
Command showCommand(const ObjectKind& kind, Record (Handler::*get)(const std::string&))
{
    return {
        kind.command("show"), "show one " + kind.title, {kind.idArgument()}, {}, {}, [=](Context& context) {
            Handler& handler = context.handler<Handler>();
            const auto read = [&](const std::string& id) { return (handler.*get)(id); };
            context.printer().record(
                fieldsOf(mustRead(context.session(), kind.title, context.text(kind.idName), read)));
        }};
}

/** Looks over what the options set before it is sent; not deduced from, so that a plain function fits. */
template <class Record>
struct CompletionOf
{
    using type = std::function<void(Context&, Record&)>;
};
template <class Record>
using Completion = typename CompletionOf<Record>::type;

/** Creates from the options, and from the ID where the caller names the object; prints the new record. */
template <class Handler, class Record>
Command createCommand(const ObjectKind& kind, const Inputs<Record>& inputs,
                      Record (Handler::*create)(Record&), const std::vector<Argument>& arguments = {},
                      const Completion<Record>& complete = nullptr)
{
    return {kind.command("create"),
            "create a " + kind.title,
            arguments,
            optionsOf(inputs),
            {},
            [=](Context& context) {
                Record record;
                apply(inputs, context.values(), record);
                if (!arguments.empty()) {
                    record.ID = context.text(kind.idName);
                }
                if (complete) {
                    complete(context, record);
                }
                const Record created = (context.handler<Handler>().*create)(record);
                if (created.ID.empty()) {
                    throw Failure("the " + kind.title +
                                  " was created, but the array did not let it be read yet: "
                                  "look for it before creating it again");
                }
                context.printer().record(fieldsOf(created));
            }};
}

/** Any operation on one object that takes its ID and nothing else. */
template <class Handler>
Command actionCommand(const ObjectKind& kind, const std::string& action, const std::string& summary,
                      const std::string& done, void (Handler::*operation)(const std::string&))
{
    return {kind.command(action), summary, {kind.idArgument()}, {}, {}, [=](Context& context) {
                const std::string id = context.text(kind.idName);
                withObjects(context.session(), {{kind.title, id}},
                            [&] { (context.handler<Handler>().*operation)(id); });
                tellAction(context, kind, id, action, kind.title + " " + id + " " + done);
            }};
}

/** "add ID --host HOST": binds an initiator. */
template <class Handler>
Command bindCommand(const ObjectKind& kind, void (Handler::*bind)(const std::string&, const std::string&))
{
    const Option host{"--host", "ID", "the host", true};
    return {kind.command("add"),
            "bind an " + kind.title + " to a host",
            {kind.idArgument()},
            {host},
            {},
            [=](Context& context) {
                const std::string id = context.text(kind.idName);
                withObjects(context.session(), {{kind.title, id}, {"host", context.text(host.name)}},
                            [&] { (context.handler<Handler>().*bind)(id, context.text(host.name)); });
                Json::Value more(Json::objectValue);
                more["hostId"] = context.text(host.name);
                tellAction(context, kind, id, "add",
                           kind.title + " " + id + " bound to host " + context.text(host.name), more);
            }};
}

template <class Handler>
Command deleteCommand(const ObjectKind& kind, void (Handler::*operation)(const std::string&))
{
    return actionCommand(kind, "delete", "delete a " + kind.title, "deleted", operation);
}

} // namespace tesselctl

#endif
