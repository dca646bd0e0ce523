// The header lines of a login's answer: what of them becomes the session's cookie.
#include "FuzzTarget.h"

#include "HeaderLines.h"

#include "session/DeviceManagerImpl.h"
#include "support/RecordingPlatform.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ovra::rest::HeaderLines head;
    head.add("HTTP/1.1 200 OK\r\n");
    for (const std::string& line : linesOf(textOf(data, size))) {
        head.add(line + "\n");
    }
    const std::vector<std::string> lines = head.lines();
    for (const std::string& line : lines) {
        mustHold(line.find('\n') == std::string::npos && line.find(": ") != std::string::npos,
                 "a header is one line with a name");
    }

    RecordingPlatform& platform = RecordingPlatform::get();
    platform.reset();
    Reply answer = Reply::object(R"({"deviceid":"210123","iBaseToken":"token"})");
    answer.headers = lines;
    platform.reply(answer);
    CDeviceManagerImpl manager;
    const bool isIn = manager.loginDevice("192.0.2.1", 8088, "user", "password", USERTYPE_LOCAL);
    const std::vector<std::string> added = platform.lines("addUser");
    mustHold(isIn == !added.empty(), "a login registers its session");
    std::string cookie;
    for (const std::string& line : lines) {
        const size_t begin = line.find("Set-Cookie:");
        if (begin != std::string::npos) {
            const size_t value = begin + std::string("Set-Cookie:").size();
            const size_t end = line.find(';', value);
            cookie = end == std::string::npos ? "" : line.substr(value, end - value);
            break;
        }
    }
    mustHold(isIn == !cookie.empty(),
             "there is no login without a cookie, and none is refused for another reason");
    mustHold(!isIn || added.front().find(cookie) != std::string::npos,
             "the cookie is that of the first such line");
    return 0;
}
