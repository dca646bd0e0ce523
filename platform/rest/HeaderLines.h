#ifndef OVRA_REST_HEADERLINES_H
#define OVRA_REST_HEADERLINES_H

#include <ovra/text/Secret.h>

#include <string>
#include <string_view>
#include <vector>

namespace ovra::rest {

/** "set-cookie" as "Set-Cookie": the usual capitals of a header name. */
std::string canonicalHeaderName(std::string_view name);

/** Most bytes of one value that a session sends: token, cookie, device ID. */
constexpr size_t MOST_VALUE_BYTES = 8UL * 1024;

/** True for a text that can be sent as a header's value: not too long, no CR, LF or NUL in it. */
bool isSendableHeaderValue(std::string_view value);

/** The text without blanks and tabs at its ends. */
std::string_view withoutOuterBlanks(std::string_view text);

/**
 * Collects the header lines of the final response of one exchange, from lines as they arrive: an interim
 * response (100) and trailers behind the body are left out.
 */
class HeaderLines
{
public:
    void add(std::string_view line);
    std::vector<std::string> lines() const { return {m_lines.begin(), m_lines.end()}; }

private:
    std::vector<SecretText> m_lines;
    bool m_inHead = false;
};

} // namespace ovra::rest

#endif
