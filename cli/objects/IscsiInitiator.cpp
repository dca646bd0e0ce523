#include "objects/Operations.h"
#include "objects/Tables.h"

#include <algorithm>

namespace tesselctl {
namespace {

using Record = IscsiInitiatorMO;
using Handler = CIscsiInitiatorHandler;

constexpr const char* NO_CHAP = "0";
constexpr const char* MUTUAL_CHAP = "2";

const Choices<std::string>& chapModes()
{
    static const Choices<std::string> modes = {{"none", NO_CHAP}, {"oneway", "1"}, {"mutual", MUTUAL_CHAP}};
    return modes;
}

/** What create and modify have in common. */
Inputs<Record> settings()
{
    return {
        textInput("--name", "NAME", "display name", &Record::NAME),
        textInput("--host", "ID", "host to bind it to", &Record::PARENTID),
        choiceInput("--chap", "MODE", "CHAP of normal sessions: none, oneway or mutual",
                    &Record::NORMALVERMODE, chapModes()),
        choiceInput("--discovery-chap", "MODE", "CHAP of discovery sessions", &Record::DISCOVERYVERMODE,
                    chapModes()),
        textInput("--chap-name", "NAME", "CHAP name of the initiator", &Record::CHAPNAME),
        secretInput("--chap-secret-file", "its first line is the CHAP secret", &Record::CHAPPASSWORD),
        textInput("--mutual-chap-name", "NAME", "CHAP name of the target",
                  &Record::CHAPNAMEINITATORVERTARGET),
        secretInput("--mutual-chap-secret-file", "its first line is the target's CHAP secret",
                    &Record::CHAPPASSWORDINITATORVERTARGET),
    };
}

Inputs<Record> changes()
{
    Inputs<Record> inputs = settings();
    inputs.push_back(secretInput("--old-chap-secret-file", "its first line is the CHAP secret in force",
                                 &Record::CHAPOLDPASSWORD));
    inputs.push_back(secretInput("--old-mutual-chap-secret-file",
                                 "its first line is the target's CHAP secret in force",
                                 &Record::CHAPOLDPASSWORDINITATORVERTARGET));
    return inputs;
}

bool usesChap(const Record& record)
{
    return record.NORMALVERMODE != NO_CHAP || record.DISCOVERYVERMODE != NO_CHAP;
}

bool isMutual(const Record& record)
{
    return record.NORMALVERMODE == MUTUAL_CHAP || record.DISCOVERYVERMODE == MUTUAL_CHAP;
}

/** The modes alone decide whether CHAP is used, so that no secret is sent for nothing. */
void settle(Record& record)
{
    record.USECHAP = usesChap(record);
    record.PARENTTYPE = record.PARENTID.empty() ? 0 : MO_HOST;
}

void complete(Context&, Record& record)
{
    settle(record);
    if (usesChap(record) && (record.CHAPNAME.empty() || record.CHAPPASSWORD.empty())) {
        throw UsageError("CHAP needs --chap-name and --chap-secret-file");
    }
    if (isMutual(record) &&
        (record.CHAPNAMEINITATORVERTARGET.empty() || record.CHAPPASSWORDINITATORVERTARGET.empty())) {
        throw UsageError("mutual CHAP needs --mutual-chap-name and --mutual-chap-secret-file");
    }
    if (!usesChap(record) && !record.CHAPPASSWORD.empty()) {
        throw UsageError("a CHAP secret needs --chap or --discovery-chap");
    }
}

/**
 * Begins with the record of the array, so that what is not named stays: a name alone does not turn CHAP off.
 */
void modify(Context& context, const ObjectKind& kind)
{
    Handler& handler = context.handler<Handler>();
    const std::string id = context.text(kind.idName);
    const auto read = [&](const std::string& wanted) { return handler.getIscsiInitiator(wanted); };
    Record record = mustRead(context.session(), kind.title, id, read);
    record.PARENTID.clear();
    apply(changes(), context.values(), record);
    settle(record);
    if (context.has("--chap-name") && record.CHAPPASSWORD.empty()) {
        throw UsageError("a new --chap-name needs its --chap-secret-file");
    }
    if (context.has("--mutual-chap-name") && record.CHAPPASSWORDINITATORVERTARGET.empty()) {
        throw UsageError("a new --mutual-chap-name needs its --mutual-chap-secret-file");
    }
    handler.modifyIscsiInitiator(record);
    context.printer().record(fieldsOf(mustRead(context.session(), kind.title, id, read)));
}

Command modifyCommand(const ObjectKind& kind)
{
    return {kind.command("modify"),
            "change an " + kind.title + "; what is not named stays",
            {kind.idArgument()},
            optionsOf(changes()),
            {},
            [=](Context& context) {
                const auto options = optionsOf(changes());
                if (std::none_of(options.begin(), options.end(),
                                 [&](const auto& o) { return context.has(o.name); })) {
                    throw UsageError("nothing is to be changed");
                }
                modify(context, kind);
            }};
}

} // namespace

Commands iscsiInitiatorCommands()
{
    const ObjectKind initiator{{"initiator", "iscsi"}, "iSCSI initiator", "IQN", {}};
    return {
        createCommand(initiator, settings(), &Handler::createIscsiInitiator, {initiator.idArgument()},
                      complete),
        showCommand(initiator, &Handler::getIscsiInitiator),
        modifyCommand(initiator),
        deleteCommand(initiator, &Handler::deleteIscsiInitiator),
        bindCommand(initiator, &Handler::addIscsiInitiatorToHost),
        actionCommand(initiator, "remove", "unbind an iSCSI initiator from its host", "unbound from its host",
                      &Handler::removeIscsiInitiatorFromHost),
    };
}

} // namespace tesselctl
