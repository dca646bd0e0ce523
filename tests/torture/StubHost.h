#ifndef TORTURE_STUBHOST_H
#define TORTURE_STUBHOST_H

#include <cstdint>
#include <ctime>
#include <string>

namespace torture {

/** The initiator of this host, and its only way to the array. */
constexpr const char* INITIATOR = "iqn.2026-01.example:torture";

/**
 * Gives the process a /sys, a /dev, a /proc and semaphores of its own, and tools in PATH, of a host that has
 * one session with the array. False, and why on standard error, where that is not allowed.
 * @param logs a directory that gets a file system of its own.
 */
bool enterStubHost(const std::string& logs);

/** Which disk a scan brings from now on, while the LUN is there; it is sdc. */
void bringDisk(const std::string& wwn, const std::string& lunId, std::uint64_t bytes);
/** Takes it away, as if it had never been there. */
void takeDisk();
bool isDiskThere();

// The kernel's part, for what stands in the place of the C library's functions.

/** Does what was written to /sys. */
void letKernelWork();
/** Nobody sleeps: the clock is set forward. */
void letTimePass(long nanoseconds);
void addPassedTime(timespec& time);
time_t passedSeconds();
bool isDiskRequest(unsigned long request);
int answerAsDisk(int fd, unsigned long request, void* argument);

} // namespace torture

#endif
