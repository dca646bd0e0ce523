// The control interface of the simulator, behind HTTP: each line one of "fault BODY", "bulk BODY", "state
// RESOURCE ID BODY", "object METHOD TARGET BODY" and "strike METHOD TARGET".
#include "FuzzTarget.h"

#include "base/Json.h"
#include "model/BulkLuns.h"
#include "model/Exposure.h"
#include "model/Operations.h"
#include "watch/Faults.h"
#include "wire/ArrayInterface.h"

#include <algorithm>
#include <memory>

using namespace arraysim;

namespace {

constexpr unsigned MOST_OF_BULK = 20;

/** An array, made anew now and then, so that it does not grow. */
struct Array
{
    ~Array() { std::remove(":memory:"); } // made beside the store, which is in memory

    Store store{":memory:"};
    World world{store};
    Sessions sessions{{"admin", "password"}, world.deviceId()};
    ArrayInterface interface {
        world, sessions
    };
    Faults faults;
};

/** The first word of a text, which is taken off it. */
std::string takeWord(std::string& text)
{
    const size_t end = std::min(text.find(' '), text.size());
    const std::string word = text.substr(0, end);
    text.erase(0, end + 1);
    return word;
}

void doLine(Array& array, std::string line)
{
    const std::string what = takeWord(line);
    if (what == "fault") {
        const unsigned id = array.faults.add(parseBody(line));
        mustHold(!array.faults.list().empty(), "a fault that was set is there");
        mustHold(id % 3 != 0 || array.faults.remove(id), "a fault can be taken back");
    } else if (what == "strike") {
        const std::string method = takeWord(line);
        array.faults.strike({method, line, 0});
    } else if (what == "bulk") {
        const Json::Value wanted = parseBody(line);
        if (numberIn(wanted, "count", 0) <= MOST_OF_BULK) {
            const auto lock = array.world.lock();
            createLuns(array.world, wanted);
        }
    } else if (what == "state") {
        const ObjectType* const type = findResource(takeWord(line));
        const std::string id = takeWord(line);
        if (type != nullptr) {
            const auto lock = array.world.lock();
            adjustObject(array.world, *type, id, parseBody(line));
        }
    } else if (what == "object") {
        const std::string method = takeWord(line);
        const std::string target = takeWord(line);
        const Answer answer = array.interface.handleObject(method, target, line);
        Json::Value read;
        mustHold(readJson(answer.body(), read), "an answer is JSON");
        mustHold(answer.code != static_cast<int>(Code::INTERNAL), "what is refused is refused for a reason");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static std::unique_ptr<Array> array;
    static unsigned uses = 0;
    if (uses++ % 100 == 0) {
        array.reset();
        array = std::make_unique<Array>();
    }
    for (const std::string& line : linesOf(textOf(data, size))) {
        try {
            doLine(*array, line);
        } catch (const ArrayError&) { // it is refused
        }
    }
    return 0;
}
