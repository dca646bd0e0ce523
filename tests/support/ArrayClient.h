#ifndef SUPPORT_ARRAYCLIENT_H
#define SUPPORT_ARRAYCLIENT_H

#include "support/ArraySim.h"

#include <httplib.h>
#include <json/json.h>

#include <map>
#include <string>
#include <vector>

namespace tessel_test {

/** What the array answered to one request. */
struct Reply
{
    bool received = false; ///< false: the connection ended without a whole answer
    int status = 0;
    std::string text;
    Json::Value json;
    std::multimap<std::string, std::string> headers;

    /** The error object's code, -1 where there is no such object. */
    int code() const;
    std::string description() const { return json["error"]["description"].asString(); }
    const Json::Value& data() const { return json["data"]; }
    /** The IDs of all records. */
    std::vector<std::string> ids() const;
};

/** A client of the array's interface that sends exactly what a test tells it to, over one connection. */
class ArrayClient
{
public:
    explicit ArrayClient(const ArraySim& array);

    /** Logs in as the array's user and keeps the session for the requests that follow. */
    Reply login();
    Reply login(const std::string& user, const std::string& password);
    /** Gives up the connection, e.g. because the array was started anew. */
    void disconnect() { m_client.stop(); }
    /** A request below the device's root; the body is JSON text, empty for none. */
    Reply request(const std::string& method, const std::string& path, const std::string& body = "");
    /** A request to a whole target, without the session. */
    Reply raw(const std::string& method, const std::string& target, const std::string& body,
              const httplib::Headers& headers = {});

    Reply get(const std::string& path) { return request("GET", path); }
    Reply post(const std::string& path, const std::string& body) { return request("POST", path, body); }
    Reply put(const std::string& path, const std::string& body) { return request("PUT", path, body); }
    Reply del(const std::string& path) { return request("DELETE", path); }
    /** Creates an object and returns its ID; the test fails where the array refuses. */
    std::string create(const std::string& path, const std::string& body);

    std::string deviceId;
    std::string token;
    std::string cookie;

private:
    const ArraySim& m_array;
    httplib::SSLClient m_client;
};

} // namespace tessel_test

#endif
