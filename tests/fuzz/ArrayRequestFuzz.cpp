// Requests to the simulator: each line a method, a target and a body, on an open session.
#include "FuzzTarget.h"

#include "base/Json.h"
#include "wire/ArrayInterface.h"

#include <algorithm>
#include <memory>

using namespace arraysim;

namespace {

/** An array, made anew now and then, so that it does not grow. */
struct Array
{
    Array()
        : store(":memory:"), world(store), sessions({"admin", "password"}, world.deviceId()),
          interface(world, sessions)
    {
        Json::Value body(Json::objectValue);
        body["username"] = "admin";
        body["password"] = "password";
        body["scope"] = 0;
        const Answer login = sessions.login(body);
        Json::Value answer;
        mustHold(readJson(login.body(), answer), "an answer is JSON");
        token = answer["data"]["iBaseToken"].asString();
        for (const auto& [name, value] : login.headers) {
            cookie = name == "Set-Cookie" ? value.substr(0, value.find(';')) : cookie;
        }
    }

    ~Array() { std::remove(":memory:"); } // made beside the store, which is in memory

    Store store;
    World world;
    Sessions sessions;
    ArrayInterface interface;
    std::string token;
    std::string cookie;
};

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static std::unique_ptr<Array> array;
    static unsigned uses = 0;
    if (uses++ % 1000 == 0) {
        array = std::make_unique<Array>();
    }
    for (const std::string& line : linesOf(textOf(data, size))) {
        const size_t first = line.find(' ');
        const size_t second = line.find(' ', std::min(first, line.size()) + 1);
        if (second == std::string::npos) {
            continue;
        }
        const std::string target = line.substr(first + 1, second - first - 1);
        const Answer answer = array->interface.handle(
            {line.substr(0, first), "/deviceManager/rest/" + array->world.deviceId() + target,
             line.substr(second + 1), array->token, array->cookie});
        Json::Value read;
        mustHold(readJson(answer.body(), read) && read["error"].isMember("code"),
                 "an answer has an error object");
        mustHold(answer.code != static_cast<int>(Code::INTERNAL), "what is refused is refused for a reason");
        mustHold(!resourceTemplate(target).empty(), "a resource has a name");
    }
    return 0;
}
