#include "wire/ArrayInterface.h"

#include "base/Json.h"
#include "wire/AssociationRoutes.h"
#include "wire/ObjectRoutes.h"

#include <exception>
#include <string_view>

namespace arraysim {
namespace {

constexpr std::string_view ROOT = "/deviceManager/rest/";
constexpr const char* SESSIONS = "/sessions";
constexpr const char* KEEP_ALIVE = "/server/logininfo";

/** Runs one operation and turns what it throws into the answer's error object. */
template <typename Operation>
Answer answered(Operation operation)
{
    try {
        return operation();
    } catch (const ArrayError& refused) {
        return Answer::error(refused);
    } catch (const std::exception& failure) {
        return Answer::error(ArrayError(Code::INTERNAL, failure.what()));
    }
}

} // namespace

std::string relativeTarget(const std::string& target)
{
    if (target.compare(0, ROOT.size(), ROOT) != 0) {
        return target;
    }
    const std::size_t slash = target.find_first_of("/?", ROOT.size());
    return slash == std::string::npos ? std::string("/") : target.substr(slash);
}

std::string resourceTemplate(const std::string& relative)
{
    const std::string path = relative.substr(0, relative.find('?'));
    const std::size_t second = path.find('/', 1);
    const std::string resource = path.empty() ? path : path.substr(1, second - 1);
    const std::string tail = second == std::string::npos ? std::string() : path.substr(second + 1);
    if (findResource(resource) == nullptr) {
        return path == SESSIONS || path == KEEP_ALIVE ? path : "other";
    }
    return "/" + resource + (tail.empty() ? "" : isAction(tail) ? "/" + tail : "/{id}");
}

Answer ArrayInterface::handle(const ArrayRequest& request)
{
    return answered([&] { return route(request); });
}

Answer ArrayInterface::handleObject(const std::string& method, const std::string& target,
                                    const std::string& body)
{
    return answered([&] {
        const auto lock = m_world.lock();
        return routeObject(m_world, {method, parseTarget(target), body});
    });
}

Answer ArrayInterface::route(const ArrayRequest& request)
{
    const Target whole = parseTarget(request.target);
    const auto& segments = whole.segments;
    if (segments.size() < 4 || segments[0] != "deviceManager" || segments[1] != "rest") {
        throw ArrayError(Code::RESOURCE_UNKNOWN,
                         "The array's interface is below " + std::string(ROOT) + "DEVICEID/.");
    }
    const bool isSession = segments[3] == "sessions" && segments.size() == 4;
    if (isSession && request.method == "POST") {
        return m_sessions.login(parseBody(request.body));
    }
    const Credentials credentials{segments[2], request.token, request.cookie};
    if (isSession && request.method == "DELETE") {
        m_sessions.logout(credentials);
        return {};
    }
    m_sessions.require(credentials);
    if (isSession) {
        throw ArrayError(Code::METHOD_UNSUPPORTED, "Sessions are opened with POST and ended with DELETE.");
    }
    const Target relative = parseTarget(relativeTarget(request.target));
    if (request.method == "GET" && relative.path == KEEP_ALIVE) {
        Json::Value info(Json::objectValue);
        info["username"] = m_sessions.user();
        info["deviceid"] = segments[2];
        return Answer::records(std::move(info));
    }
    const auto lock = m_world.lock();
    return routeObject(m_world, {request.method, relative, request.body});
}

} // namespace arraysim
