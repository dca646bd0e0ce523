#include "objects/Existence.h"

#include <array>
#include <map>
#include <random>

namespace tesselctl {
namespace {

std::string randomDigits(size_t count)
{
    constexpr const char* DIGITS = "0123456789abcdef";
    std::random_device random;
    std::string text;
    while (text.size() < count) {
        text += DIGITS[random() % 16];
    }
    return text;
}

/** Of the same form, so that the array does not complain of the form. */
std::string idThatNobodyHas(const std::string& id)
{
    if (id.find_first_not_of("0123456789") == std::string::npos) {
        return "4294967294"; // the highest but one of 32 bits; all ones often mean "none"
    }
    const bool isWwn = id.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    return isWwn ? randomDigits(id.size()) : id + randomDigits(8);
}

template <class Handler, class Record>
auto by(Record (Handler::*get)(const std::string&))
{
    return
        [get](Session& session, const std::string& id) { return (session.handler<Handler>().*get)(id).ID; };
}

std::string idOf(Session& session, const std::string& title, const std::string& id)
{
    static const std::map<std::string, std::function<std::string(Session&, const std::string&)>> READS = {
        {"LUN", by(&CLunHandler::getLun)},
        {"snapshot", by(&CSnapshotHandler::getSnapshot)},
        {"LUN group", by(&CLunGroupHandler::getLunGroup)},
        {"host", by(&CHostHandler::getHost)},
        {"host group", by(&CHostGroupHandler::getHostGroup)},
        {"mapping view", by(&CMappingViewHandler::getMappingView)},
        {"iSCSI initiator", by(&CIscsiInitiatorHandler::getIscsiInitiator)},
        {"FC initiator", by(&CFCInitiatorHandler::getFCInitiator)},
    };
    return READS.at(title)(session, id);
}

} // namespace

void throwNotFound(const std::string& title, const std::string& id, int arrayCode)
{
    throw NotFound("the array has no " + title + " with the ID '" + id + "'", arrayCode);
}

bool saysNotFound(Session& session, const ReadId& read, const std::string& id, int arrayCode)
{
    try {
        read(idThatNobodyHas(id));
        return false;
    } catch (const OvraAPIExceptionWithErrCode& error) {
        return error.getErrCode() == arrayCode && session.keepAlive();
    }
}

void requireThere(Session& session, const Named& object)
{
    struct Read
    {
        std::string ID;
    };
    mustRead(session, object.first, object.second,
             [&](const std::string& id) { return Read{idOf(session, object.first, id)}; });
}

} // namespace tesselctl
