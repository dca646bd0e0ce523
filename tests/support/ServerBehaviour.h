#ifndef SUPPORT_SERVERBEHAVIOUR_H
#define SUPPORT_SERVERBEHAVIOUR_H

#include <chrono>
#include <string>

namespace tessel_test {

/** What a test server does with one request: bytes to send, and what becomes of the connection. */
struct Behaviour
{
    enum class Afterwards
    {
        KEEP_OPEN, ///< read the next request
        CLOSE,     ///< orderly TLS and TCP close
        RESET      ///< TCP reset
    };

    std::string bytes;                    ///< sent as they are
    std::string separately;               ///< arrives with them, in a TLS record of their own
    std::string endlessly;                ///< then these again and again, until the client goes
    std::chrono::milliseconds perByte{0}; ///< when not 0: one byte at a time, with this pause
    std::chrono::milliseconds before{0};  ///< from the request to the first byte
    Afterwards afterwards = Afterwards::KEEP_OPEN;

    /** A well-formed answer with that body; extraHeaders is lines that end in CR LF. */
    static Behaviour answer(const std::string& body, int status = 200, const std::string& extraHeaders = "");
    /** Success with data as JSON text, e.g. "{\"ID\":\"7\"}"; empty for none. */
    static Behaviour success(const std::string& data = "", const std::string& extraHeaders = "");
    /** An error object of the array. */
    static Behaviour error(long long code, const std::string& description);
    /** These very bytes. */
    static Behaviour raw(const std::string& bytes, Afterwards afterwards = Afterwards::KEEP_OPEN);

    static Behaviour closeWithoutAnswer();
    static Behaviour resetWithoutAnswer();
    static Behaviour neverAnswer();
    /** Announces more body than it sends, then closes. */
    static Behaviour truncatedBody();
    static Behaviour notJson();
    static Behaviour noErrorObject();
    /** Arrays nested that deep inside data. */
    static Behaviour nested(unsigned long depth);
    /** Header lines without end. */
    static Behaviour endlessHeaders();
    /** One header line without end. */
    static Behaviour endlessHeaderLine();
    /** A chunked body without end. */
    static Behaviour endlessBody();
    static Behaviour redirect(const std::string& location);
    /** A success, one byte every pause. */
    static Behaviour dribble(std::chrono::milliseconds pause);
};

} // namespace tessel_test

#endif
