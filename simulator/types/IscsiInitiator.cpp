#include "types/Common.h"
#include "types/Types.h"
#include "wire/Codes.h"

#include <algorithm>

namespace arraysim {
namespace {

/// The members of one direction of CHAP.
struct ChapSide
{
    const char* name;
    const char* secret;
    const char* oldSecret;
};

constexpr ChapSide oneWay{"CHAPNAME", "CHAPPASSWORD", "CHAPOLDPASSWORD"};
constexpr ChapSide mutual{"CHAPNAMEINITATORVERTARGET", "CHAPPASSWORDINITATORVERTARGET",
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

/// The new secret is taken only from one who knows the old one.
void checkSide(Change& initiator, const ChapSide& side, bool usedBefore)
{
    if (initiator.value(side.name).empty() || initiator.value(side.secret).empty()) {
        throw ArrayError(Code::chapIncomplete,
                         std::string("This CHAP mode needs ") + side.name + " and " + side.secret + ".");
    }
    if (usedBefore && initiator.gave(side.secret) &&
        initiator.givenText(side.oldSecret) != initiator.before->value(side.secret)) {
        throw ArrayError(Code::chapOldSecretWrong, std::string("The secret ") + side.secret +
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
        dropSide(initiator, oneWay);
        dropSide(initiator, mutual);
        return;
    }
    if (!hasMode(initiator.values, "1") && !hasMode(initiator.values, "2")) {
        throw ArrayError(Code::chapIncomplete, "CHAP needs a NORMALVERMODE or DISCOVERYVERMODE of 1 or 2.");
    }
    checkSide(initiator, oneWay, usedBefore);
    if (hasMode(initiator.values, "2")) {
        checkSide(initiator, mutual, mutualBefore);
    } else {
        dropSide(initiator, mutual);
    }
}

void checkIscsiName(const std::string& id)
{
    const std::string kind = id.substr(0, 4);
    const bool visible = std::all_of(id.begin(), id.end(), [](char c) { return c > ' ' && c < 0x7f; });
    if ((kind != "iqn." && kind != "eui." && kind != "naa.") || !visible || id.size() < 5 ||
        id.size() > 223) {
        throw ArrayError(Code::memberInvalid,
                         "The ID of an iSCSI initiator is its name: iqn., eui. or naa. and visible ASCII "
                         "characters, at most 223 in all.");
    }
}

Field chapText(const char* key)
{
    return Field(key, Wire::text).given(Given::atCreate).modifiable();
}

Field chapMode(const char* key)
{
    return Field(key, Wire::code).given(Given::atCreate).modifiable().range(0, 2).fallback("0");
}

} // namespace

const ObjectType& iscsiInitiatorType()
{
    static const ObjectType type = [] {
        ObjectType initiators{Type::iscsiInitiator, "iSCSI initiator", {"iscsi_initiator"}, {}};
        initiators.naming = Naming::byCaller;
        initiators.checkId = checkIscsiName;
        initiators.parent = Parent{Type::host, false, true};
        initiators.complete = completeInitiator;
        initiators.fields = {
            Field("NAME", Wire::text).given(Given::atCreate).modifiable().filter(),
            healthField(),
            runningField(runningOffline),
            freeFlag(Type::iscsiInitiator, Type::host),
            Field("USECHAP", Wire::flag).given(Given::atCreate).modifiable().fallback("false"),
            chapMode("NORMALVERMODE"),
            chapMode("DISCOVERYVERMODE"),
            chapText(oneWay.name),
            chapText(oneWay.secret).secret(),
            chapText(oneWay.oldSecret).transient(),
            chapText(mutual.name),
            chapText(mutual.secret).secret(),
            chapText(mutual.oldSecret).transient(),
        };
        return initiators;
    }();
    return type;
}

} // namespace arraysim
