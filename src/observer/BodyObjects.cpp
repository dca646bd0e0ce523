#include "observer/BodyObjects.h"

#include "observer/Kinds.h"

#include <tessel/Handler.h>

#include <algorithm>

namespace ovra::tessel {
namespace {

struct Kind
{
    unsigned long type;
    const char* name;
};

constexpr std::array<Kind, 7> KINDS = {{{MO_LUN, kinds::LUN},
                                        {MO_SNAPSHOT, kinds::SNAPSHOT},
                                        {MO_LUNGROUP, kinds::LUNGROUP},
                                        {MO_HOST, kinds::HOST},
                                        {MO_HOSTGROUP, kinds::HOSTGROUP},
                                        {MO_MAPPINGVIEW, kinds::MAPPINGVIEW},
                                        {MO_STORAGEPOOL, kinds::STORAGEPOOL}}};

/** The members of bodies that name objects; no other one reaches an observer. */
struct BodyMember
{
    std::string_view key;
    BodyObjects::Of of;
    unsigned long BodyObject::*type;
    std::string BodyObject::*text;
};

constexpr std::array<BodyMember, 7> BODY_MEMBERS = {
    {{"TYPE", BodyObjects::OWN, &BodyObject::type, nullptr},
     {"ID", BodyObjects::OWN, nullptr, &BodyObject::id},
     {"NAME", BodyObjects::OWN, nullptr, &BodyObject::name},
     {"PARENTTYPE", BodyObjects::PARENT, &BodyObject::type, nullptr},
     {"PARENTID", BodyObjects::PARENT, nullptr, &BodyObject::id},
     {"ASSOCIATEOBJTYPE", BodyObjects::ASSOCIATED, &BodyObject::type, nullptr},
     {"ASSOCIATEOBJID", BodyObjects::ASSOCIATED, nullptr, &BodyObject::id}}};

const BodyMember* memberOf(std::string_view key)
{
    const auto* const found = std::find_if(BODY_MEMBERS.begin(), BODY_MEMBERS.end(),
                                           [&](const BodyMember& member) { return member.key == key; });
    return found == BODY_MEMBERS.end() ? nullptr : found;
}

} // namespace

const char* kinds::of(unsigned long type)
{
    const auto* const found =
        std::find_if(KINDS.begin(), KINDS.end(), [&](const Kind& kind) { return kind.type == type; });
    return found == KINDS.end() ? "object" : found->name;
}

void BodyObjects::sends(std::string_view key, const std::string& text)
{
    const BodyMember* const member = memberOf(key);
    if (member != nullptr && member->text != nullptr) {
        m_objects.at(member->of).*(member->text) = text;
    }
}

void BodyObjects::sends(std::string_view key, unsigned long number)
{
    const BodyMember* const member = memberOf(key);
    if (member != nullptr && member->type != nullptr) {
        m_objects.at(member->of).*(member->type) = number;
    }
}

} // namespace ovra::tessel
