#include "ResponseImpl.h"

#include <ovra/rest/RestRequest.h>

#include <limits>

using ovra::rest::Answer;

RestResponse::RestResponse() : m_impl(std::make_unique<Impl>()) {}
RestResponse::~RestResponse() = default;

int RestResponse::getResponseCode(std::string& description)
{
    description = m_impl->answer ? std::string_view(m_impl->answer->description) : std::string_view();
    return m_impl->answer ? m_impl->answer->code : static_cast<int>(REST_ANSWER_UNREADABLE);
}

unsigned long RestResponse::count()
{
    return m_impl->answer ? m_impl->answer->records.size() + m_impl->answer->kept.count() : 0;
}

Json::Value& RestResponse::operator[](unsigned long index)
{
    if (index < count()) {
        Answer& answer = *m_impl->answer;
        return answer.kept.count() != 0 ? answer.kept[index]
                                        : answer.records[static_cast<Json::ArrayIndex>(index)];
    }
    m_impl->nothing = Json::Value(); // the caller may have written to it
    return m_impl->nothing;
}

namespace {

template <class Number>
Number readDecimal(const std::string& text)
{
    constexpr Number LARGEST = std::numeric_limits<Number>::max();
    Number number = 0;
    for (size_t i = text.find_first_not_of(" \t\n\v\f\r");
         i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        const auto digit = static_cast<Number>(text[i] - '0');
        if (number > (LARGEST - digit) / 10) {
            return LARGEST;
        }
        number = number * 10 + digit;
    }
    return number;
}

} // namespace

unsigned long RestResponse::str2ul(const std::string& text)
{
    return readDecimal<unsigned long>(text);
}

unsigned long long RestResponse::str2ull(const std::string& text)
{
    return readDecimal<unsigned long long>(text);
}
