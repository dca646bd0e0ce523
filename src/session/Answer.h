#ifndef SESSION_ANSWER_H
#define SESSION_ANSWER_H

#include "session/FieldTable.h"

#include <memory>
#include <string>
#include <vector>

namespace ovra::tessel {

/** What came of a request: why there is no answer, the array's error, or records. */
class Answer
{
public:
    /** No answer, and why. */
    explicit Answer(int reason) : m_reason(reason), m_response(std::make_unique<RestResponse>()) {}

    /** What an exchange brings: sends with a response and header lines to fill, and returns 0 or a reason. */
    template <class Send>
    static Answer to(Send send)
    {
        Answer answer(0);
        answer.m_reason = send(*answer.m_response, answer.m_headers);
        return answer;
    }

    /** 0, or why there is no answer. */
    int reason() const { return m_reason; }
    /** The array's error code; 0 for success. */
    int code(std::string& description) const { return m_response->getResponseCode(description); }
    const std::vector<std::string>& headers() const { return m_headers; }

    unsigned long count() const { return m_response->count(); }
    Json::Value& operator[](unsigned long index) const { return (*m_response)[index]; }

    bool hasObject(unsigned long index = 0) const { return index < count() && (*this)[index].isMember("ID"); }

    /** The ID of a record; empty without one. */
    std::string id(unsigned long index = 0) const
    {
        return index < count() ? (*this)[index]["ID"].asString() : std::string();
    }

    /** Record 0; the defaults when there is none, or none with an ID: docs/oddities.md#missing-object */
    template <class Record>
    Record read() const
    {
        return hasObject() ? readRecord<Record>((*this)[0]) : Record();
    }

    /** Record 0 with or without an ID, or the defaults when there is none. */
    template <class Record>
    Record readAny() const
    {
        return count() != 0 ? readRecord<Record>((*this)[0]) : Record();
    }

    /** Reads every object in full by its ID, in the array's order; records without an ID are skipped. */
    template <class Read>
    auto readEach(Read readObject) const
    {
        std::vector<decltype(readObject(std::string()))> objects;
        objects.reserve(countObjects()); // grown as they come they would take three times their room
        for (unsigned long i = 0; i < count(); ++i) {
            if (hasObject(i)) {
                objects.push_back(readObject(id(i)));
            }
        }
        return objects;
    }

private:
    /** Records with an ID; those that are none at all are not told before their turn comes. */
    unsigned long countObjects() const
    {
        unsigned long objects = 0;
        for (unsigned long i = 0; i < count(); ++i) {
            objects += (*this)[i].isObject() && hasObject(i) ? 1 : 0;
        }
        return objects;
    }

    int m_reason;
    std::unique_ptr<RestResponse> m_response;
    std::vector<std::string> m_headers;
};

} // namespace ovra::tessel

#endif
