#ifndef HOST_CHILDSTATUS_H
#define HOST_CHILDSTATUS_H

namespace ovra::tessel {

/**
 * While one lives, the kernel keeps how this process's children ended, also in a process that ignores
 * SIGCHLD: it has SIGCHLD at its default meanwhile. Its children that end meanwhile are collected when the
 * last one of these goes, as they would have been by the kernel.
 */
class ChildStatus
{
public:
    ChildStatus();
    ~ChildStatus();
    ChildStatus(const ChildStatus&) = delete;
    ChildStatus& operator=(const ChildStatus&) = delete;
};

} // namespace ovra::tessel

#endif
