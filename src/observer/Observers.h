#ifndef OBSERVER_OBSERVERS_H
#define OBSERVER_OBSERVERS_H

#include <tessel/Observer.h>

class CDeviceManager;

namespace ovra::tessel {

/** Whether anybody listens: all that a call costs when nobody does. */
bool isObserved();

/** Tells the observers; when the thread gives the rescan lock back, if it has it. Never throws. */
void tell(const OperationEvent& event);
void tell(const HostEvent& event);

/** While this lives, what the thread has to tell waits: it holds a lock, or is about to take it. */
class Untold
{
public:
    Untold();
    ~Untold();
    Untold(const Untold&) = delete;
    Untold& operator=(const Untold&) = delete;
};
/** The same for a lock that is taken and given back by two functions. */
void beginUntold();
void endUntold();

/** Whose sessions these are. Thread-safe. */
namespace sessions {

struct Session
{
    std::string array;
    std::string user;
};

Session named(const std::string& ip, unsigned int port, const std::string& user);
void set(const CDeviceManager* manager, Session session);
Session of(const CDeviceManager* manager);
void forget(const CDeviceManager* manager);

} // namespace sessions

} // namespace ovra::tessel

#endif
