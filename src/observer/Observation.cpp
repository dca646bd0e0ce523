#include "observer/Observation.h"

#include <ovra/threads/ThreadNumber.h>

#include <algorithm>
#include <new>
#include <unistd.h>
#include <utility>

namespace ovra::tessel {
namespace {

using Steady = std::chrono::steady_clock;

thread_local Observation* t_innermost = nullptr;

} // namespace

double secondsSince(Steady::time_point start)
{
    return std::chrono::duration<double>(Steady::now() - start).count();
}

void stamp(OperationEvent& event)
{
    event.start = std::chrono::system_clock::now();
    event.process = getpid();
    event.thread = threadNumber(event.process);
}

Observation::Observation(const std::string& operation, const CDeviceManager* manager, Level level)
{
    if (!isObserved()) {
        return;
    }
    m_call.emplace();
    m_call->level = level;
    OperationEvent& event = m_call->event;
    event.operation = operation;
    stamp(event);
    sessions::Session session = sessions::of(manager);
    event.array = std::move(session.array);
    event.user = std::move(session.user);
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
    if (m_call) {
        m_call->body.sends(key, text);
    }
}

void Observation::sends(std::string_view key, unsigned long number)
{
    if (m_call) {
        m_call->body.sends(key, number);
    }
}

bool Observation::isMaking() const
{
    return m_call && !m_call->body.own().name.empty();
}

void Observation::made(const std::string& id)
{
    m_call->body.own().id = id;
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
    for (Observation* call = m_call ? this : nullptr; call != nullptr; call = call->m_outer) {
        call->m_call->event.isChange = true;
    }
}

void Observation::found(const std::string& device)
{
    if (m_call) {
        m_call->event.device = device;
    }
}

void Observation::finish(GatheredCall& call)
{
    for (const BodyObject& object : call.body.all()) {
        if (object.type == 0 && &object == &call.body.own()) { // an initiator, which is named by its ID
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
        GatheredCall& call = *m_call;
        finish(call);
        if (code != 0 || !call.isAbsorbed) {
            call.event.code = code;
            call.event.what = what;
        }
        call.event.isDone = call.event.code == 0;
    } catch (const std::bad_alloc&) { // it is told as far as it is known
    }
    t_innermost = m_outer;
    tell(m_call->event);
    m_call.reset();
}

Observation* Observation::ofThread()
{
    return t_innermost;
}

OperationEvent Observation::soFar() const
{
    OperationEvent event = m_call->event;
    event.seconds = secondsSince(m_call->start);
    return event;
}

void Observation::fails(int code, const std::string& what)
{
    for (Observation* call = t_innermost; call != nullptr; call = call->m_outer) {
        call->m_call->failedCode = code;
        call->m_call->failedWhat = what;
    }
}

void Observation::absorbed()
{
    for (Observation* call = t_innermost; call != nullptr && call->m_call->level == Level::OPERATION;
         call = call->m_outer) {
        call->m_call->isAbsorbed = true;
        call->m_call->event.code = call->m_call->failedCode;
        call->m_call->event.what = call->m_call->failedWhat;
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
    for (Observation* call = t_innermost; call != nullptr; call = call->m_outer) {
        call->m_call->event.lockSeconds += seconds;
    }
}

std::string refusalOf(int code)
{
    return "the array refused it, error code " + std::to_string(code);
}

} // namespace ovra::tessel
