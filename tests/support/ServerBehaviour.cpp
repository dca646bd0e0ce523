#include "ServerBehaviour.h"

namespace tessel_test {

namespace {

constexpr const char* SUCCESS_OBJECT = R"("error":{"code":0,"description":"0"})";

std::string withHead(const std::string& body, int status, const std::string& extraHeaders)
{
    return "HTTP/1.1 " + std::to_string(status) + " Status\r\nContent-Type: application/json\r\n" +
           extraHeaders + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string repeated(const std::string& text, unsigned long times)
{
    std::string result;
    result.reserve(text.size() * times);
    for (unsigned long i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

} // namespace

Behaviour Behaviour::raw(const std::string& bytes, Afterwards afterwards)
{
    Behaviour behaviour;
    behaviour.bytes = bytes;
    behaviour.afterwards = afterwards;
    return behaviour;
}

Behaviour Behaviour::answer(const std::string& body, int status, const std::string& extraHeaders)
{
    return raw(withHead(body, status, extraHeaders));
}

Behaviour Behaviour::success(const std::string& data, const std::string& extraHeaders)
{
    return answer("{" + (data.empty() ? "" : "\"data\":" + data + ",") + SUCCESS_OBJECT + "}", 200,
                  extraHeaders);
}

Behaviour Behaviour::error(long long code, const std::string& description)
{
    return answer(R"({"data":{},"error":{"code":)" + std::to_string(code) + R"(,"description":")" +
                  description + "\"}}");
}

Behaviour Behaviour::closeWithoutAnswer()
{
    return raw("", Afterwards::CLOSE);
}

Behaviour Behaviour::resetWithoutAnswer()
{
    return raw("", Afterwards::RESET);
}

Behaviour Behaviour::neverAnswer()
{
    return {};
}

Behaviour Behaviour::truncatedBody()
{
    return raw("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n{\"data\":{", Afterwards::CLOSE);
}

Behaviour Behaviour::notJson()
{
    return answer("<html><body>It works!</body></html>");
}

Behaviour Behaviour::noErrorObject()
{
    return answer(R"({"data":{"ID":"7"}})");
}

Behaviour Behaviour::nested(unsigned long depth)
{
    return success(repeated("[", depth) + repeated("]", depth));
}

Behaviour Behaviour::endlessHeaders()
{
    Behaviour behaviour = raw("HTTP/1.1 200 OK\r\n");
    behaviour.endlessly = "X-Filler: " + std::string(100, 'x') + "\r\n";
    return behaviour;
}

Behaviour Behaviour::endlessHeaderLine()
{
    Behaviour behaviour = raw("HTTP/1.1 200 OK\r\nX-Filler: ");
    behaviour.endlessly = std::string(1000, 'x');
    return behaviour;
}

Behaviour Behaviour::endlessBody()
{
    Behaviour behaviour = raw("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
    behaviour.endlessly = repeated("4000\r\n" + std::string(0x4000, ' ') + "\r\n", 4);
    return behaviour;
}

Behaviour Behaviour::redirect(const std::string& location)
{
    return raw("HTTP/1.1 302 Found\r\nLocation: " + location + "\r\nContent-Length: 0\r\n\r\n");
}

Behaviour Behaviour::dribble(std::chrono::milliseconds pause)
{
    Behaviour behaviour = success("{\"ID\":\"7\"}");
    behaviour.perByte = pause;
    return behaviour;
}

} // namespace tessel_test
