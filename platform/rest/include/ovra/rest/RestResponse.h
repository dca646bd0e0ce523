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
    RestResponse();
    ~RestResponse();
    RestResponse(const RestResponse&) = delete;
    RestResponse& operator=(const RestResponse&) = delete;

    /**
     * The array's error code (0 = success) and its description.
     * An object that no answer was received into gives REST_ANSWER_UNREADABLE and an empty description.
     */
    int getResponseCode(std::string& description);

    /** Number of data records. */
    unsigned long count();

    /** The index-th data record; a null value when index is not below count(). */
    Json::Value& operator[](unsigned long index);

    /** Decimal text to number: leading blanks and digits are read, anything else reads as 0; saturates. */
    static unsigned long str2ul(const std::string& text);
    static unsigned long long str2ull(const std::string& text);

private:
    friend class RestRequest;
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

#endif
