// Shows a LUN to a host, and tells who is told of it: an observer that prints, and the audit log.

#include <tessel/Access.h>
#include <tessel/Array.h>
#include <tessel/Audit.h>

#include <cstdlib>
#include <iostream>
#include <memory>

using namespace ovra::tessel;

namespace {

// What feeds a telemetry library has this shape too: one event, one span or point.
class Printer : public Observer
{
public:
    void operationEnded(const OperationEvent& event) override
    {
        if (!event.within.empty()) {
            return; // a step of another call
        }
        std::cout << event.operation;
        for (const ObservedObject& object : event.objects) {
            std::cout << " " << object.kind << "=" << object.id;
        }
        std::cout << (event.isDone ? " done" : " failed: " + event.what) << "\n";
    }
};

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 6 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... observe_calls ADDRESS PORT USER LUN-ID INITIATOR\n";
        return 2;
    }
    try {
        addObserver(std::make_shared<Printer>());
        addObserver(auditFile());
        Array array;
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password);
        ensureVisible(array.manager(), StorageObject::lun(argv[4]), HostInitiator::iscsi(argv[5]));
        return 0;
    } catch (const OvraAPIException& e) {
        std::cerr << e.what() << "\n";
        return 1;
    }
}
