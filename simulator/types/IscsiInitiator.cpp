#include "base/Codes.h"
#include "types/Common.h"
#include "types/Types.h"

#include <algorithm>

namespace arraysim {
namespace {

/** The members of one direction of CHAP. */
struct ChapSide
{
    const char* name;
    const char* secret;
    const char* oldSecret;
};

constexpr ChapSide ONE_WAY{"CHAPNAME", "CHAPPASSWORD", "CHAPOLDPASSWORD"};
constexpr ChapSide MUTUAL{"CHAPNAMEINITATORVERTARGET", "CHAPPASSWORDINITATORVERTARGET",
                          "CHAPOLDPASSWORDINITATORVERTARGET"};

bool hasMode(const Values& values, const char* mode)
{
    const auto is = [&](const char* key) {
        const auto found = values.find(key);
        return found != values.end() && found->second == mode;
    };
    return is("NORMALVERMODE") || is("DISCOVERYVERMODE");
}

bool usesChap(const Values& values)
{
    const auto found = values.find("USECHAP");
    return found != values.end() && found->second == "true";
}

/** The new secret is taken only from one who knows the old one. */
void checkSide(Change& initiator, const ChapSide& side, bool usedBefore)
{
    if (initiator.value(side.name).empty() || initiator.value(side.secret).empty()) {
        throw ArrayError(Code::CHAP_INCOMPLETE,
                         std::string("This CHAP mode needs ") + side.name + " and " + side.secret + ".");
    }
    if (usedBefore && initiator.gave(side.secret) &&
        initiator.givenText(side.oldSecret) != initiator.before->value(side.secret)) {
        throw ArrayError(Code::CHAP_OLD_SECRET_WRONG, std::string("The secret ") + side.secret +
                                                          " is changed only with the current one in " +
                                                          side.oldSecret + ".");
    }
}

void dropSide(Change& initiator, const ChapSide& side)
{
    initiator.values.erase(side.name);
    initiator.values.erase(side.secret);
}

void completeInitiator(Change& initiator)
{
    const bool usedBefore = !initiator.creating() && usesChap(initiator.before->values);
    const bool mutualBefore = usedBefore && hasMode(initiator.before->values, "2");
    if (!usesChap(initiator.values)) {
        initiator.values.erase("NORMALVERMODE");
        initiator.values.erase("DISCOVERYVERMODE");
        dropSide(initiator, ONE_WAY);
        dropSide(initiator, MUTUAL);
        return;
    }
    if (!hasMode(initiator.values, "1") && !hasMode(initiator.values, "2")) {
        throw ArrayError(Code::CHAP_INCOMPLETE, "CHAP needs a NORMALVERMODE or DISCOVERYVERMODE of 1 or 2.");
    }
    checkSide(initiator, ONE_WAY, usedBefore);
    if (hasMode(initiator.values, "2")) {
        checkSide(initiator, MUTUAL, mutualBefore);
    } else {
        dropSide(initiator, MUTUAL);
    }
}

void checkIscsiName(const std::string& id)
{
    const std::string kind = id.substr(0, 4);
    const bool visible = std::all_of(id.begin(), id.end(), [](char c) { return c > ' ' && c < 0x7f; });
    if ((kind != "iqn." && kind != "eui." && kind != "naa.") || !visible || id.size() < 5 ||
        id.size() > 223) {
        throw ArrayError(Code::MEMBER_INVALID,
                         "The ID of an iSCSI initiator is its name: iqn., eui. or naa. and visible ASCII "
                         "characters, at most 223 in all.");
    }
}

Field chapText(const char* key)
{
    return Field(key, Wire::TEXT).given(Given::AT_CREATE).modifiable();
}

Field chapMode(const char* key)
{
    return Field(key, Wire::CODE).given(Given::AT_CREATE).modifiable().range(0, 2).fallback("0");
}

} // namespace

const ObjectType& iscsiInitiatorType()
{
    static const ObjectType type = [] {
        ObjectType initiators{Type::ISCSI_INITIATOR, "iSCSI initiator", {"iscsi_initiator"}, {}};
        initiators.naming = Naming::BY_CALLER;
        initiators.checkId = checkIscsiName;
        initiators.parent = Parent{Type::HOST, false, true};
        initiators.complete = completeInitiator;
        initiators.fields = {
            Field("NAME", Wire::TEXT).given(Given::AT_CREATE).modifiable().filter(),
            healthField(),
            runningField(RUNNING_OFFLINE),
            freeFlag(Type::ISCSI_INITIATOR, Type::HOST),
            Field("USECHAP", Wire::FLAG).given(Given::AT_CREATE).modifiable().fallback("false"),
            chapMode("NORMALVERMODE"),
            chapMode("DISCOVERYVERMODE"),
            chapText(ONE_WAY.name),
            chapText(ONE_WAY.secret).secret(),
            chapText(ONE_WAY.oldSecret).transient(),
            chapText(MUTUAL.name),
            chapText(MUTUAL.secret).secret(),
            chapText(MUTUAL.oldSecret).transient(),
        };
        return initiators;
    }();
    return type;
}

} // namespace arraysim
