#include "observer/Observation.h"

#include <algorithm>
#include <array>
#include <unistd.h>

namespace ovra::tessel {
namespace {

using Steady = std::chrono::steady_clock;

thread_local Observation* t_innermost = nullptr;
thread_local int t_code = 0; ///< of what failed last
thread_local std::string t_what;

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

double secondsSince(Steady::time_point start)
{
    return std::chrono::duration<double>(Steady::now() - start).count();
}

/** An object of which a body tells type, ID and name in members of their own. */
struct BodyObject
{
    unsigned long type = 0;
    std::string id;
    std::string name;
};

/** The members of bodies that name objects; no other one reaches an observer. */
struct BodyMember
{
    enum Of
    {
        OWN,
        PARENT,
        ASSOCIATED,
        COUNT
    };
    std::string_view key;
    Of of;
    unsigned long BodyObject::*type;
    std::string BodyObject::*text;
};

constexpr std::array<BodyMember, 7> BODY_MEMBERS = {
    {{"TYPE", BodyMember::OWN, &BodyObject::type, nullptr},
     {"ID", BodyMember::OWN, nullptr, &BodyObject::id},
     {"NAME", BodyMember::OWN, nullptr, &BodyObject::name},
     {"PARENTTYPE", BodyMember::PARENT, &BodyObject::type, nullptr},
     {"PARENTID", BodyMember::PARENT, nullptr, &BodyObject::id},
     {"ASSOCIATEOBJTYPE", BodyMember::ASSOCIATED, &BodyObject::type, nullptr},
     {"ASSOCIATEOBJID", BodyMember::ASSOCIATED, nullptr, &BodyObject::id}}};

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

struct Observation::Gathered
{
    OperationEvent event;
    Steady::time_point start = Steady::now();
    std::array<BodyObject, BodyMember::COUNT> body;
    Level level;
    bool isAbsorbed = false; ///< code and what are those of a failure that nobody else is told
};

Observation::Observation(const std::string& operation, const CDeviceManager* manager, Level level)
{
    if (!isObserved()) {
        return;
    }
    m_call = std::make_unique<Gathered>();
    m_call->level = level;
    OperationEvent& event = m_call->event;
    event.operation = operation;
    event.start = std::chrono::system_clock::now();
    event.process = getpid();
    event.thread = gettid();
    const sessions::Session session = sessions::of(manager);
    event.array = session.array;
    event.user = session.user;
    m_outer = t_innermost;
    if (m_outer != nullptr) {
        const OperationEvent& outer = m_outer->m_call->event;
        event.within = outer.within.empty() ? outer.operation : outer.within;
    }
    t_innermost = this;
}

Observation::~Observation()
{
    if (m_call) {
        t_innermost = m_outer;
    }
}

void Observation::names(const char* kind, const std::string& id, const std::string& name)
{
    if (!m_call || id.empty()) {
        return;
    }
    if (kind == std::string_view(kinds::INITIATOR)) {
        m_call->event.initiator = id;
        return;
    }
    std::vector<ObservedObject>& objects = m_call->event.objects;
    const auto found = std::find_if(objects.begin(), objects.end(), [&](const ObservedObject& object) {
        return object.kind == kind && object.id == id;
    });
    if (found == objects.end()) {
        objects.push_back({kind, id, name});
    }
}

void Observation::names(const StorageObject& object, const HostInitiator& initiator)
{
    names(kinds::of(object.type), object.id);
    names(kinds::INITIATOR, initiator.id);
}

void Observation::sends(std::string_view key, const std::string& text)
{
    const BodyMember* const member = m_call ? memberOf(key) : nullptr;
    if (member != nullptr && member->text != nullptr) {
        m_call->body[member->of].*(member->text) = text;
    }
}

void Observation::sends(std::string_view key, unsigned long number)
{
    const BodyMember* const member = m_call ? memberOf(key) : nullptr;
    if (member != nullptr && member->type != nullptr) {
        m_call->body[member->of].*(member->type) = number;
    }
}

bool Observation::isMaking() const
{
    return m_call && !m_call->body[BodyMember::OWN].name.empty();
}

void Observation::made(const std::string& id)
{
    m_call->body[BodyMember::OWN].id = id;
}

void Observation::opens(const std::string& ip, unsigned int port, const std::string& user)
{
    if (m_call) {
        const sessions::Session session = sessions::named(ip, port, user);
        m_call->event.array = session.array;
        m_call->event.user = session.user;
    }
}

void Observation::setChange()
{
    for (const Observation* call = m_call ? this : nullptr; call != nullptr; call = call->m_outer) {
        call->m_call->event.isChange = true;
    }
}

void Observation::found(const std::string& device)
{
    if (m_call) {
        m_call->event.device = device;
    }
}

void Observation::finish(Gathered& call)
{
    for (const BodyObject& object : call.body) {
        if (object.type == 0 && &object == call.body.data()) { // an initiator, which is named by its ID
            continue;
        }
        if (!object.id.empty()) {
            names(kinds::of(object.type), object.id, object.name);
        } else if (!object.name.empty()) {
            call.event.objects.push_back({kinds::of(object.type), "", object.name});
        }
    }
    call.event.seconds = secondsSince(call.start);
}

void Observation::ended(int code, const std::string& what) noexcept
{
    if (!m_call) {
        return;
    }
    try {
        Gathered& call = *m_call;
        finish(call);
        if (code != 0 || !call.isAbsorbed) {
            call.event.code = code;
            call.event.what = what;
        }
        call.event.isDone = call.event.code == 0;
    } catch (const std::bad_alloc&) { // it is told as far as it is known
    }
    const std::unique_ptr<Gathered> call = std::move(m_call);
    t_innermost = m_outer;
    tell(std::move(call->event));
}

void Observation::fails(int code, const std::string& what)
{
    if (t_innermost != nullptr) {
        t_code = code;
        t_what = what;
    }
}

void Observation::absorbed()
{
    for (const Observation* call = t_innermost; call != nullptr && call->m_call->level == Level::OPERATION;
         call = call->m_outer) {
        call->m_call->isAbsorbed = true;
        call->m_call->event.code = t_code;
        call->m_call->event.what = t_what;
    }
}

void Observation::jobsName(const char* kind, const std::string& id)
{
    for (Observation* call = t_innermost; call != nullptr; call = call->m_outer) {
        if (call->m_call->level == Level::JOB) {
            call->names(kind, id);
        }
    }
}

void Observation::waited(double seconds)
{
    for (const Observation* call = t_innermost; call != nullptr; call = call->m_outer) {
        call->m_call->event.lockSeconds += seconds;
    }
}

void tellStep(HostEvent::Step step, const std::string& device, const std::string& what, double seconds)
{
    if (!isObserved()) {
        return;
    }
    HostEvent event;
    event.step = step;
    event.device = device;
    event.what = what;
    event.seconds = seconds;
    if (t_innermost != nullptr) {
        event.operation = t_innermost->m_call->event;
        event.operation.seconds = secondsSince(t_innermost->m_call->start);
        if (step == HostEvent::REMOVED || step == HostEvent::RENEWED || step == HostEvent::SCANNED) {
            t_innermost->setChange();
        }
    } else {
        event.operation.start = std::chrono::system_clock::now();
        event.operation.process = getpid();
        event.operation.thread = gettid();
    }
    tell(std::move(event));
}

TimedScan::~TimedScan()
{
    if (isObserved()) {
        tellStep(HostEvent::SCANNED, "", m_what, secondsSince(m_start));
    }
}

TimedWait::~TimedWait()
{
    Observation::waited(secondsSince(m_start));
}

std::string refusalOf(int code)
{
    return "the array refused it, error code " + std::to_string(code);
}

} // namespace ovra::tessel
