#include "session/CallsAtWork.h"
#include "session/LastFailure.h"
#include "session/ManagerOptions.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

namespace ovra::tessel {

/** Can be read once it was cancelled, by any number of waits. */
struct Cancellation::Event
{
    Event() : descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~Event() { close(descriptor); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    const int descriptor;
};

Cancellation::Cancellation() : m_event(std::make_shared<Event>())
{
    if (m_event->descriptor < 0) {
        throw notedFailure(FailureKind::HOST, "this process can open nothing more! Cancellation", true);
    }
}

void Cancellation::cancel() const noexcept
{
    eventfd_write(m_event->descriptor, 1);
}

void Cancellation::reset() const noexcept
{
    eventfd_t count = 0;
    eventfd_read(m_event->descriptor, &count);
}

bool Cancellation::isCancelled() const noexcept
{
    RestCall call;
    call.cancelDescriptor = m_event->descriptor;
    return isCancelledWithin(&call, 0);
}

struct CallLimit::State
{
    RestCall call;
    std::shared_ptr<Cancellation::Event> event; ///< not closed under a call that waits for it
};

CallLimit::CallLimit(std::chrono::milliseconds whole) : m_state(new State)
{
    m_state->call.until = endOf(whole);
    beginLimit(m_state->call);
}

CallLimit::CallLimit(const Cancellation& cancellation)
    : CallLimit(cancellation, std::chrono::milliseconds::max())
{
}

CallLimit::CallLimit(const Cancellation& cancellation, std::chrono::milliseconds whole) : m_state(new State)
{
    m_state->event = cancellation.m_event;
    m_state->call.cancelDescriptor = cancellation.m_event->descriptor;
    m_state->call.until = endOf(whole);
    beginLimit(m_state->call);
}

CallLimit::~CallLimit()
{
    endLimit(m_state->call);
}

void setCallLimit(CDeviceManager& manager, std::chrono::milliseconds each)
{
    changeOptions(manager, [&](ManagerOptions& options) {
        options.each = each;
        options.cancelDescriptor = -1;
        options.event.reset();
    });
}

void setCallLimit(CDeviceManager& manager, std::chrono::milliseconds each, const Cancellation& cancellation)
{
    changeOptions(manager, [&](ManagerOptions& options) {
        options.each = each;
        options.cancelDescriptor = cancellation.m_event->descriptor;
        options.event = cancellation.m_event;
    });
}

void setCredentials(CDeviceManager& manager, CredentialsSource source)
{
    changeOptions(manager, [&](ManagerOptions& options) {
        options.credentials = source ? std::make_shared<CredentialsSource>(std::move(source)) : nullptr;
        options.areCredentialsRefused = false;
    });
}

} // namespace ovra::tessel
