#ifndef TESSEL_AUDIT_H
#define TESSEL_AUDIT_H

/** @file
 * Observers that write down who changed what. */

#include <tessel/Observer.h>

#include <memory>
#include <string>

namespace ovra {
namespace tessel {

/**
 * An event as a JSON object in one line, with the members that have a value: time (UTC, when it began),
 * array, user, operation, the ID of each object by its kind ("lun": "17") and its name ("lunName"),
 * initiator, device, done, code, what, seconds, lockSeconds, process, thread. Always ASCII.
 * @param event a call that has ended.
 * @return the line, without its end.
 */
TESSEL_API std::string auditLine(const OperationEvent& event);
/**
 * The same of a step, which stands in "step"; "operation" is the call that it is a step of.
 * @param event a step.
 * @return the line, without its end.
 */
TESSEL_API std::string auditLine(const HostEvent& event);

/**
 * An observer that writes a line for each call of the program that changes something, and for each step on
 * the disks of this host, to the audit log: Tessel_audit_DATE.log in the directory of the logs, which ages as
 * they do. Each line is written by one write, whole, also beside other processes. Hand it to addObserver.
 * @return the observer.
 * @throws OvraAPIException when the log library of this program has no audit log.
 */
TESSEL_API std::shared_ptr<Observer> auditFile();

/**
 * The same to the journal of this host: the line as message, and its members as TESSEL_OPERATION, TESSEL_LUN
 * and so on (journalctl TESSEL_LUN=17). Loads libsystemd.so.0.
 * @return the observer.
 * @throws OvraAPIException when this host has no such library.
 */
TESSEL_API std::shared_ptr<Observer> auditJournal();

} // namespace tessel
} // namespace ovra

#endif
