#ifndef OVRA_REST_RESTRESPONSE_H
#define OVRA_REST_RESTRESPONSE_H

#include <json/value.h>

#include <memory>
#include <string>

/**
 * The answer to one request: the error object and the data records.
 *
 * {"data": {...}} is one record, {"data": [...]} one record an element, missing or null none.
 */
class __attribute__((visibility("default"))) RestResponse
{
public:
    /** An answer that was not received yet. */
    RestResponse();
    /** Overwrites the texts of records and description; copies that were handed out stay. */
    ~RestResponse();
    /** Not copied. */
    RestResponse(const RestResponse&) = delete;
    /** Not copied. */
    RestResponse& operator=(const RestResponse&) = delete;

    /**
     * The error object.
     * @param description receives the array's description; empty without an answer.
     * @return the array's error code, 0 for success; REST_ANSWER_UNREADABLE when no answer was received.
     */
    int getResponseCode(std::string& description);

    /** @return number of data records. */
    unsigned long count();

    /**
     * One data record.
     * @param index 0 to count() - 1.
     * @return the record; a null value for any other index.
     */
    Json::Value& operator[](unsigned long index);

    /**
     * Decimal text to number.
     * @param text leading blanks and digits are read; anything else ends the number.
     * @return the number, the largest one when the text's is larger; 0 without digits.
     */
    static unsigned long str2ul(const std::string& text);
    /** @copydoc str2ul */
    static unsigned long long str2ull(const std::string& text);

private:
    friend class RestRequest;
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

#endif
