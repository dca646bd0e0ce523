#ifndef LOCALDISK_WHOLE_H
#define LOCALDISK_WHOLE_H

#include "host/Interruption.h"

#include "session/LastFailure.h"

#include <ovra/disk/Files.h>
#include <ovra/threads/NoCancellation.h>
#include <tessel/Exception.h>

#include <string>
#include <system_error>

namespace ovra::tessel {

/** Does the steps of a call; what they throw comes out as one of the SDK's two classes. */
template <class Steps>
auto whole(const Steps& steps) -> decltype(steps())
{
    const NoCancellation untilTheEnd;
    try {
        return calling(FailureKind::HOST, steps);
    } catch (const Interruption& interruption) {
        setLastScanSignal(interruption.signal);
        throw notedFailure(FailureKind::HOST, "a tool of the host was ended by signal " +
                                                  std::to_string(interruption.signal) +
                                                  ": call again to go on from there! LocalDisk");
    } catch (const CallEnded& ended) {
        throw notedFailure(
            ended.why, "the call was ended while it was at work: call again to go on from there! LocalDisk",
            true);
    } catch (const disk::Unreadable& problem) {
        throw notedFailure(FailureKind::HOST,
                           std::string("the disks of this host cannot be told: ") + problem.what() +
                               "; call again to go on from there! LocalDisk",
                           true);
    } catch (const std::system_error& error) {
        throw notedFailure(FailureKind::HOST,
                           std::string("this process can start nothing: ") + error.what() + "! LocalDisk");
    }
}

} // namespace ovra::tessel

#endif
