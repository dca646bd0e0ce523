#ifndef OVRA_LOG_LOGROOM_H
#define OVRA_LOG_LOGROOM_H

#include "DatedName.h"

#include <array>
#include <cstdint>
#include <string>

namespace ovra::log {

constexpr std::array<const char*, 3> PREFIXES = {"Tessel_run_", "Tessel_interface_", "Tessel_audit_"};

/** How much the log files may take; 0: no limit. */
struct Limits
{
    std::uint64_t ofDay = 0;
    std::uint64_t ofAll = 0;

    bool areSet() const { return ofDay != 0 || ofAll != 0; }
    /** The size at which a file is full, and the next part begins: small, so that little goes at once. */
    std::uint64_t ofFile() const;
};

/** A lock between processes on an open file or directory; given up when it is not had within a moment. */
class FileLock
{
public:
    /** @param descriptor not shared with another process; -1: there is no lock. */
    explicit FileLock(int descriptor);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    bool isHeld() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

/** The part of a prefix's day that is written to; 0 where there is none. */
unsigned lastPart(const std::string& directory, const std::string& prefix, const Date& date);

/**
 * Removes the oldest files until one more, full, fits. Under the lock of the directory. What may still be
 * written to counts as full.
 * @return false when it does not fit: nothing is left that may go.
 */
bool makeRoom(const std::string& directory, const Limits& limits, const Date& today);

/**
 * The day until which time has passed for sure: today, or an earlier one when a file of this boot of the host
 * tells that the clock was set forward since.
 */
Date provedDate(const std::string& directory, const Date& today);

/** Notes for provedDate how long the host has run when a file was begun. */
void noteUptime(int descriptor);

} // namespace ovra::log

#endif
