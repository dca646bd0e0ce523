#include "observer/AuditRecord.h"

#include <json/writer.h>
#include <ovra/log/LogAPI.h>
#include <tessel/Exception.h>

#include <cmath>
#include <cstdio>
#include <ctime>

// A log library that was built before there was an audit log has none.
extern "C" int Log_Audit(const char* record) __attribute__((weak));

namespace ovra::tessel {
namespace {

constexpr double MICROSECONDS = 1e6;

/** "2026-11-21T09:20:30.045Z" */
std::string timeText(std::chrono::system_clock::time_point time)
{
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const time_t seconds = milliseconds / 1000;
    tm calendar = {};
    gmtime_r(&seconds, &calendar);
    char text[64] = {};
    const size_t length = strftime(text, sizeof(text), "%Y-%m-%dT%H:%M:%S", &calendar);
    snprintf(text + length, sizeof(text) - length, ".%03dZ", static_cast<int>(milliseconds % 1000));
    return text;
}

void add(Json::Value& record, const std::string& name, const std::string& text)
{
    if (!text.empty()) {
        Json::Value& member = record[name];
        member = member.isNull() ? text : member.asString() + ", " + text;
    }
}

double rounded(double seconds)
{
    return std::round(seconds * MICROSECONDS) / MICROSECONDS;
}

Json::Value originOf(const OperationEvent& event)
{
    Json::Value record(Json::objectValue);
    record["time"] = timeText(event.start);
    add(record, "array", event.array);
    add(record, "user", event.user);
    add(record, "operation", event.within.empty() ? event.operation : event.within);
    for (const ObservedObject& object : event.objects) {
        add(record, object.kind, object.id);
        add(record, object.kind + "Name", object.name);
    }
    add(record, "initiator", event.initiator);
    record["process"] = event.process;
    record["thread"] = event.thread;
    return record;
}

class AuditFile final : public AuditObserver
{
    void write(const Json::Value& record, bool) override { Log_Audit(lineOf(record).c_str()); }
};

} // namespace

Json::Value auditRecord(const OperationEvent& event)
{
    Json::Value record = originOf(event);
    add(record, "device", event.device);
    record["done"] = event.isDone;
    record["code"] = event.code;
    add(record, "what", event.what);
    record["seconds"] = rounded(event.seconds);
    if (event.lockSeconds > 0) {
        record["lockSeconds"] = rounded(event.lockSeconds);
    }
    return record;
}

Json::Value auditRecord(const HostEvent& event)
{
    Json::Value record = originOf(event.operation);
    record["step"] = nameOf(event.step);
    add(record, "device", event.device);
    add(record, "what", event.what);
    if (event.step == HostEvent::SCANNED) {
        record["seconds"] = rounded(event.seconds);
    }
    return record;
}

std::string lineOf(const Json::Value& record)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["precision"] = 9;
    return Json::writeString(builder, record);
}

std::string auditLine(const OperationEvent& event)
{
    return lineOf(auditRecord(event));
}

std::string auditLine(const HostEvent& event)
{
    return lineOf(auditRecord(event));
}

void AuditObserver::operationEnded(const OperationEvent& event)
{
    if (event.isChange && event.within.empty()) {
        write(auditRecord(event), event.isDone);
    }
}

void AuditObserver::hostStep(const HostEvent& event)
{
    write(auditRecord(event), event.step != HostEvent::REFUSED);
}

std::shared_ptr<Observer> auditFile()
{
    if (Log_Audit == nullptr) {
        throw OvraAPIException("the log library of this program has no audit log! auditFile");
    }
    return std::make_shared<AuditFile>();
}

} // namespace ovra::tessel
