#include "ArrayClient.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sstream>

namespace tessel_test {

std::vector<std::string> Reply::ids() const
{
    std::vector<std::string> all;
    for (const auto& record : data()) {
        all.push_back(record["ID"].asString());
    }
    return all;
}

int Reply::code() const
{
    const bool understood = json.isObject() && json["error"].isObject() && json["error"]["code"].isInt();
    return understood ? json["error"]["code"].asInt() : -1;
}

ArrayClient::ArrayClient(const ArraySim& array)
    : deviceId(array.deviceId()), m_array(array), m_client(array.ip(), static_cast<int>(array.port()))
{
    std::signal(SIGPIPE, SIG_IGN); // connections that the array has closed are a part of the tests
    m_client.set_ca_cert_path(array.caFile());
    // The HTTP library's client reads beyond shorter names when it looks for an IPv6 address in a
    // certificate.
    m_client.enable_server_certificate_verification(array.ip().find(':') == std::string::npos);
    m_client.set_keep_alive(true);
    m_client.set_url_encode(false);
    m_client.set_read_timeout(60);
}

Reply ArrayClient::raw(const std::string& method, const std::string& target, const std::string& body,
                       const httplib::Headers& headers)
{
    httplib::Request request;
    request.method = method;
    request.path = target;
    request.body = body;
    request.headers = headers;
    request.set_header("Content-Type", "application/json");
    const httplib::Result result = m_client.send(request);
    Reply reply;
    if (result) {
        reply.received = true;
        reply.status = result->status;
        reply.text = result->body;
        reply.headers.insert(result->headers.begin(), result->headers.end());
        std::istringstream stream(result->body);
        std::string errors;
        Json::parseFromStream(Json::CharReaderBuilder(), stream, &reply.json, &errors);
    }
    return reply;
}

Reply ArrayClient::login(const std::string& user, const std::string& password)
{
    Json::Value body;
    body["username"] = user;
    body["password"] = password;
    body["scope"] = 0;
    const Reply reply = raw("POST", "/deviceManager/rest/xxxx/sessions", body.toStyledString());
    if (reply.received && reply.code() == 0) {
        deviceId = reply.data()["deviceid"].asString();
        token = reply.data()["iBaseToken"].asString();
        const auto header = reply.headers.find("Set-Cookie");
        cookie = header == reply.headers.end() ? "" : header->second.substr(0, header->second.find(';'));
    }
    return reply;
}

Reply ArrayClient::login()
{
    return login(m_array.user(), m_array.password());
}

Reply ArrayClient::request(const std::string& method, const std::string& path, const std::string& body)
{
    return raw(method, "/deviceManager/rest/" + deviceId + path, body,
               {{"iBaseToken", token}, {"Cookie", cookie}});
}

std::string ArrayClient::create(const std::string& path, const std::string& body)
{
    const Reply reply = post(path, body);
    EXPECT_EQ(reply.code(), 0) << reply.text;
    return reply.data()["ID"].asString();
}

} // namespace tessel_test
