#ifndef OBSERVER_AUDITRECORD_H
#define OBSERVER_AUDITRECORD_H

#include <json/value.h>
#include <tessel/Audit.h>

namespace ovra::tessel {

/** What is written of an event, by name. */
Json::Value auditRecord(const OperationEvent& event);
Json::Value auditRecord(const HostEvent& event);

/** The line of such a record. */
std::string lineOf(const Json::Value& record);

/** Writes what changes something: the calls of the application that do, and the steps. */
class AuditObserver : public Observer
{
public:
    void operationEnded(const OperationEvent& event) override;
    void hostStep(const HostEvent& event) override;

protected:
    virtual void write(const Json::Value& record, bool isDone) = 0;
};

} // namespace ovra::tessel

#endif
