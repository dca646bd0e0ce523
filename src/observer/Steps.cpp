#include "observer/Steps.h"

#include "observer/Observation.h"

#include <new>

namespace ovra::tessel {

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
    if (Observation* const call = Observation::ofThread()) {
        event.operation = call->soFar();
        if (step == HostEvent::REMOVED || step == HostEvent::RENEWED || step == HostEvent::SCANNED) {
            call->setChange();
        }
    } else {
        stamp(event.operation);
    }
    tell(event);
}

TimedScan::~TimedScan()
{
    try {
        tellStep(HostEvent::SCANNED, "", m_what, secondsSince(m_start));
    } catch (const std::bad_alloc&) { // nobody is told
    }
}

TimedWait::~TimedWait()
{
    Observation::waited(secondsSince(m_start));
}

} // namespace ovra::tessel
