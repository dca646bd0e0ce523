#ifndef OBSERVER_RECORDER_H
#define OBSERVER_RECORDER_H

#include <tessel/Observer.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/** Writes down what it is told. */
class Recorder : public ovra::tessel::Observer
{
public:
    void operationEnded(const ovra::tessel::OperationEvent& event) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        operations.push_back(event);
    }

    void hostStep(const ovra::tessel::HostEvent& event) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        steps.push_back(event);
    }

    /** The calls of the application by that name. */
    std::vector<ovra::tessel::OperationEvent> calls(const std::string& name) const
    {
        std::vector<ovra::tessel::OperationEvent> found;
        std::copy_if(operations.begin(), operations.end(), std::back_inserter(found),
                     [&](const auto& event) { return event.operation == name && event.within.empty(); });
        return found;
    }

    std::vector<std::string> stepLines() const
    {
        std::vector<std::string> lines;
        for (const auto& event : steps) {
            lines.push_back(std::string(nameOf(event.step)) + " " + event.device);
        }
        return lines;
    }

    std::vector<ovra::tessel::OperationEvent> operations;
    std::vector<ovra::tessel::HostEvent> steps;

private:
    std::mutex m_mutex;
};

/** One that is told while this lives. */
class Recording
{
public:
    Recording() { addObserver(recorder); }
    ~Recording() { removeObserver(recorder); }
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    Recorder* operator->() const { return recorder.get(); }

    const std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
};

/** "lun 17, lungroup 5 'name'; iqn", in the order of the arguments. */
inline std::string objectsOf(const ovra::tessel::OperationEvent& event)
{
    std::string text;
    for (const auto& object : event.objects) {
        text += (text.empty() ? "" : ", ") + object.kind + (object.id.empty() ? "" : " " + object.id) +
                (object.name.empty() ? "" : " '" + object.name + "'");
    }
    return event.initiator.empty() ? text : text + "; " + event.initiator;
}

#endif
