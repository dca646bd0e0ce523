#include "faults/Faults.h"

#include <ovra/rest/RestRequest.h>

#include <climits>
#include <cstdio>
#include <curl/curl.h>
#include <utility>

using tessel_test::Behaviour;
using tessel_test::Certificate;
using tessel_test::MisbehavingServer;

namespace {

constexpr const char* GOOD = R"({"code":0,"description":"0"})";
constexpr const char* DENIED = R"({"code":5,"description":"denied"})";

std::string envelope(const std::string& data, const std::string& error)
{
    return "{" + (data.empty() ? "" : "\"data\":" + data + ",") + "\"error\":" + error + "}";
}

Fault network(const std::string& name, const Behaviour& behaviour, int code)
{
    return {name, [=](const std::string&) { return behaviour; }, Fault::NO_ANSWER, code};
}

Fault retried(const std::string& name, const Behaviour& behaviour, int code)
{
    Fault fault = network(name, behaviour, code);
    fault.isRetried = true;
    return fault;
}

Fault slow(const std::string& name, const Behaviour& behaviour)
{
    Fault fault = network(name, behaviour, CURLE_OPERATION_TIMEDOUT);
    fault.isSlow = true;
    return fault;
}

Fault heavy(const std::string& name, const Behaviour& behaviour)
{
    Fault fault = network(name, behaviour, REST_ANSWER_TOO_LARGE);
    fault.isHeavy = true;
    return fault;
}

Fault elsewhere(const std::string& name, unsigned short port, int code)
{
    Fault fault = network(name, Behaviour(), code);
    fault.port = port;
    return fault;
}

Fault unreadable(const std::string& name, const std::string& body)
{
    return network(name, Behaviour::answer(body), REST_ANSWER_UNREADABLE);
}

/** An answer whose error object is this. */
Fault withError(const std::string& name, const std::string& error, Fault::Ending ending, int code = 0,
                const std::string& description = "")
{
    return {name, [=](const std::string& data) { return Behaviour::answer(envelope(data, error)); }, ending,
            ending == Fault::NO_ANSWER ? static_cast<int>(REST_ANSWER_UNREADABLE) : code, description};
}

/** An answer whose data are these. */
Fault withData(const std::string& name, const std::string& data, const std::string& error,
               Fault::Ending ending, int code = 0)
{
    return {name, [=](const std::string&) { return Behaviour::answer(envelope(data, error)); }, ending,
            ending == Fault::NO_ANSWER || ending == Fault::SUCCESS_UNLESS_READ
                ? static_cast<int>(REST_ANSWER_UNREADABLE)
                : code,
            code == 0 ? "" : "denied"};
}

/** A good answer in another dress. */
Fault good(const std::string& name, const std::function<Behaviour(const std::string& body)>& dress)
{
    return {name, [=](const std::string& data) { return dress(envelope(data, GOOD)); }, Fault::SUCCESS};
}

std::string chunked(const std::string& body, const std::string& size)
{
    return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + size + "\r\n" + body + "\r\n0\r\n\r\n";
}

std::string hexadecimal(size_t number)
{
    char text[20];
    std::snprintf(text, sizeof(text), "%zx", number);
    return text;
}

Behaviour dribbled(const std::string& bytes)
{
    Behaviour behaviour = Behaviour::raw(bytes);
    behaviour.perByte = std::chrono::milliseconds(20);
    return behaviour;
}

Behaviour slowBody()
{
    Behaviour behaviour = Behaviour::raw("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n");
    behaviour.separately = "{\"data\":{";
    return behaviour;
}

void addNetwork(std::vector<Fault>& all)
{
    using Afterwards = Behaviour::Afterwards;
    const WrongServers& wrong = WrongServers::get();
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 40\r\n\r\n";
    const auto raw = [](const std::string& bytes, Afterwards afterwards = Afterwards::CLOSE) {
        return Behaviour::raw(bytes, afterwards);
    };
    const std::vector<Fault> some = {
        elsewhere("Refused", wrong.nobody(), CURLE_COULDNT_CONNECT),
        elsewhere("OtherCertificate", wrong.otherCertificate.port(), CURLE_PEER_FAILED_VERIFICATION),
        elsewhere("ExpiredCertificate", wrong.expired.port(), CURLE_PEER_FAILED_VERIFICATION),
        elsewhere("NoTls", wrong.plain.port(), CURLE_SSL_CONNECT_ERROR),
        retried("ClosedBeforeTheAnswer", Behaviour::closeWithoutAnswer(), CURLE_GOT_NOTHING),
        retried("ResetBeforeTheAnswer", Behaviour::resetWithoutAnswer(), CURLE_RECV_ERROR),
        network("ClosedInTheHead", raw("HTTP/1.1 200 OK\r\nContent-Le"), REST_ANSWER_UNREADABLE),
        network("ResetInTheHead", raw("HTTP/1.1 200 OK\r\nContent-Le", Afterwards::RESET), CURLE_RECV_ERROR),
        network("ClosedBeforeTheBody", raw(head), CURLE_PARTIAL_FILE),
        network("ResetBeforeTheBody", raw(head, Afterwards::RESET), CURLE_RECV_ERROR),
        network("ClosedInTheBody", raw(head + "{\"data\":{"), CURLE_PARTIAL_FILE),
        network("ResetInTheBody", raw(head + "{\"data\":{", Afterwards::RESET), CURLE_RECV_ERROR),
        slow("BlackHole", Behaviour::neverAnswer()),
        slow("SlowHead", dribbled("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}")),
        slow("SlowBody", slowBody()),
        network("ChunkOfNoSize", raw(chunked("{}", "zz"), Afterwards::KEEP_OPEN), CURLE_RECV_ERROR),
        network("ChunkOfAHugeSize", raw(chunked("{}", "FFFFFFFFFFFFFFFFFF"), Afterwards::KEEP_OPEN),
                CURLE_RECV_ERROR),
        network("ChunkThatIsCut", raw("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n40\r\n{\"da"),
                CURLE_PARTIAL_FILE),
        network("EndlessHead", Behaviour::endlessHeaders(), REST_ANSWER_TOO_LARGE),
        network("EndlessHeaderLine", Behaviour::endlessHeaderLine(), REST_ANSWER_TOO_LARGE),
        heavy("EndlessBody", Behaviour::endlessBody()),
        network("NoHttp", raw("hello\r\n\r\n"), REST_ANSWER_UNREADABLE),
        network("Http09", raw("{\"data\":{},\"error\":{\"code\":0}}"), REST_ANSWER_UNREADABLE),
        network("ShortLength", raw("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n" + envelope("{}", GOOD)),
                REST_ANSWER_UNREADABLE),
        network("Redirect", Behaviour::redirect("https://127.0.0.1:1/elsewhere"), REST_ANSWER_UNREADABLE),
        network("NoContent", raw("HTTP/1.1 204 No Content\r\n\r\n", Afterwards::KEEP_OPEN),
                REST_ANSWER_UNREADABLE),
        good("Chunked",
             [](const std::string& body) { return Behaviour::raw(chunked(body, hexadecimal(body.size()))); }),
        good("UntilTheEndOfTheConnection",
             [](const std::string& body) {
                 return Behaviour::raw("HTTP/1.1 200 OK\r\n\r\n" + body, Afterwards::CLOSE);
             }),
    };
    all.insert(all.end(), some.begin(), some.end());
    all.push_back(good("ClosedAfterTheAnswer", [](const std::string& body) {
        Behaviour behaviour = Behaviour::answer(body);
        behaviour.afterwards = Afterwards::CLOSE;
        return behaviour;
    }));
    all.back().isClosedAfterwards = true;
}

void addStatus(std::vector<Fault>& all)
{
    for (const int status : {200, 201, 202, 400, 401, 403, 404, 409, 429, 500, 502, 503, 504}) {
        const std::string name = "Status" + std::to_string(status);
        all.push_back(good(name + "WithAnAnswer",
                           [=](const std::string& body) { return Behaviour::answer(body, status); }));
        all.push_back(
            {name + "WithAnError",
             [=](const std::string& data) { return Behaviour::answer(envelope(data, DENIED), status); },
             Fault::ERROR_ANSWER, 5, "denied"});
        all.push_back(network(name + "WithHtml", Behaviour::answer("<html><body>Sorry</body></html>", status),
                              REST_ANSWER_UNREADABLE));
        all.push_back(network(name + "WithNothing", Behaviour::answer("", status), REST_ANSWER_UNREADABLE));
    }
}

void addText(std::vector<Fault>& all)
{
    const std::string whole = envelope("{}", GOOD);
    const std::vector<Fault> some = {
        unreadable("Blanks", "  \r\n "),
        unreadable("Null", "null"),
        unreadable("Array", "[]"),
        unreadable("ArrayOfAnAnswer", "[" + whole + "]"),
        unreadable("Text", "\"text\""),
        unreadable("Number", "7"),
        unreadable("EmptyObject", "{}"),
        unreadable("CutJson", whole.substr(0, whole.size() - 1)),
        unreadable("TrailingBytes", whole + " x"),
        unreadable("TwoAnswers", whole + whole),
        unreadable("Comment", "/* hello */" + whole),
        unreadable("TrailingComma", R"({"error":{"code":0,},})"),
        unreadable("SingleQuotes", "{'error':{'code':0}}"),
        unreadable("NoQuotes", "{error:{code:0}}"),
        unreadable("NotANumber", R"({"error":{"code":NaN}})"),
        unreadable("NulInside", whole.substr(0, 5) + std::string(1, '\0') + whole.substr(5)),
        unreadable("NulAtTheEnd", whole + std::string(1, '\0')),
        unreadable("ErrorTwice", R"({"error":{"code":0},"error":{"code":0}})"),
        unreadable("CodeTwice", R"({"error":{"code":5,"code":0}})"),
        unreadable("DataTwice", R"({"data":{},"data":{},"error":{"code":0}})"),
        unreadable("FieldTwice", R"({"data":{"ID":"1","ID":"2"},"error":{"code":0}})"),
        unreadable("DeepData", envelope(std::string(101, '[') + std::string(101, ']'), GOOD)),
        network("VeryDeepData", Behaviour::nested(100000), REST_ANSWER_UNREADABLE),
        unreadable("NoError", R"({"data":{}})"),
        unreadable("ErrorOfOtherCase", R"({"Error":{"code":0}})"),
    };
    all.insert(all.end(), some.begin(), some.end());
}

void addError(std::vector<Fault>& all)
{
    for (const char* const value : {"null", "[]", "\"text\"", "7", "true", "1.5", "{}", "[{\"code\":0}]"}) {
        all.push_back(withError(std::string("ErrorIs ") + value, value, Fault::NO_ANSWER));
    }
    for (const char* const value : {"null",
                                    "[]",
                                    "{}",
                                    "true",
                                    "false",
                                    "1.5",
                                    "0.0",
                                    "\"\"",
                                    "\" 0\"",
                                    "\"0 \"",
                                    "\"text\"",
                                    "\"0x0\"",
                                    "\"1.5\"",
                                    "\"+1\"",
                                    "\"-\"",
                                    "\"--1\"",
                                    "\"1e3\"",
                                    "-2147483649",
                                    "\"-2147483649\"",
                                    "1e400",
                                    "18446744073709551616",
                                    "\"-99999999999999999999\""}) {
        all.push_back(withError(std::string("CodeIs ") + value,
                                std::string(R"({"code":)") + value + R"(,"description":"d"})",
                                Fault::NO_ANSWER));
    }
    for (const char* const value : {"0", "\"0\"", "\"00\"", "\"-0\"", "-0"}) {
        all.push_back(withError(std::string("CodeIs ") + value,
                                std::string(R"({"code":)") + value + R"(,"description":"d"})",
                                Fault::SUCCESS));
    }
    for (const int code : {1, -1, 1077949001, 1077949069, -401, INT_MAX - 1, INT_MAX, INT_MIN}) {
        const std::string digits = std::to_string(code);
        all.push_back(withError("CodeIs " + digits, R"({"code":)" + digits + R"(,"description":"no"})",
                                Fault::ERROR_ANSWER, code, "no"));
        all.push_back(withError("CodeIsText " + digits, R"({"code":")" + digits + R"(","description":"no"})",
                                Fault::ERROR_ANSWER, code, "no"));
    }
    for (const char* const digits :
         {"2147483648", "4294967296", "9223372036854775807", "18446744073709551615"}) {
        const std::string said = std::string("(error code ") + digits + ") no";
        all.push_back(withError(std::string("CodeIs ") + digits,
                                std::string(R"({"code":)") + digits + R"(,"description":"no"})",
                                Fault::ERROR_ANSWER, INT_MAX, said));
        all.push_back(withError(std::string("CodeIsText ") + digits,
                                std::string(R"({"code":")") + digits + R"(","description":"no"})",
                                Fault::ERROR_ANSWER, INT_MAX, said));
    }
    const std::pair<const char*, const char*> DESCRIPTIONS[] = {{"null", ""},
                                                                {"[]", ""},
                                                                {"{}", ""},
                                                                {"7", ""},
                                                                {"true", ""},
                                                                {"\"\"", ""},
                                                                {"\"two\\nlines\"", "two\nlines"},
                                                                {"\"\\u00e4\"", "\xc3\xa4"},
                                                                {"\"%s%n\"", "%s%n"}};
    for (const auto& [value, said] : DESCRIPTIONS) {
        const auto of = [text = value](const char* code) {
            return std::string(R"({"code":)") + code + R"(,"description":)" + text + "}";
        };
        all.push_back(
            withError(std::string("DescriptionOfAnErrorIs ") + value, of("5"), Fault::ERROR_ANSWER, 5, said));
        all.push_back(withError(std::string("DescriptionOfASuccessIs ") + value, of("0"), Fault::SUCCESS));
    }
    all.push_back(withError("NoDescriptionOfAnError", R"({"code":5})", Fault::ERROR_ANSWER, 5));
    all.push_back(withError("NoDescriptionOfASuccess", R"({"code":0})", Fault::SUCCESS));
    all.push_back(withError("NoCode", R"({"description":"d"})", Fault::NO_ANSWER));
    all.push_back(withError("InvalidUtf8InAnError", "{\"code\":5,\"description\":\"\xff\xc3(\"}",
                            Fault::ERROR_ANSWER, 5, "\xff\xc3("));
}

void addData(std::vector<Fault>& all)
{
    for (const char* const data : {"\"text\"", "7", "true", "1.5"}) {
        all.push_back(withData(std::string("DataIs ") + data, data, GOOD, Fault::NO_ANSWER));
        all.push_back(withData(std::string("DataOfAnErrorIs ") + data, data, DENIED, Fault::ERROR_ANSWER, 5));
    }
    for (const char* const data : {"[\"text\"]", "[7]", "[true]", "[[]]"}) {
        all.push_back(withData(std::string("DataIs ") + data, data, GOOD, Fault::SUCCESS_UNLESS_READ));
        all.push_back(withData(std::string("DataOfAnErrorIs ") + data, data, DENIED, Fault::ERROR_ANSWER, 5));
    }
    for (const char* const data : {"", "null", "{}", "[]", "[null]", "[{}]", "{\"ID\":null}", "{\"ID\":\"\"}",
                                   "{\"ID\":7}", "{\"id\":\"7\"}", "{\"ID\":[]}", "{\"ID\":{}}",
                                   "{\"ID\":true}", "{\"ID\":\"\\u0000\"}", "{\"ID\":\"\xff\"}"}) {
        all.push_back(withData(std::string("DataIs ") + data, data, GOOD, Fault::EITHER));
    }
}

} // namespace

WrongServers& WrongServers::get()
{
    static WrongServers servers;
    return servers;
}

WrongServers::WrongServers()
    : otherCertificate([] {
          MisbehavingServer::Options options;
          options.certificate = Certificate::OtherCa;
          return options;
      }()),
      expired([] {
          MisbehavingServer::Options options;
          options.certificate = Certificate::Expired;
          return options;
      }()),
      plain([] {
          MisbehavingServer::Options options;
          options.plainHttp = true;
          return options;
      }()),
      m_nobody(MisbehavingServer().port())
{
}

const std::vector<Fault>& faults()
{
    static const std::vector<Fault> all = [] {
        std::vector<Fault> made;
        addNetwork(made);
        addStatus(made);
        addText(made);
        addError(made);
        addData(made);
        return made;
    }();
    return all;
}
