#ifndef UNIT_HANDLERS_ATTACH_ATTACHTEST_H
#define UNIT_HANDLERS_ATTACH_ATTACHTEST_H

#include "unit/handlers/HandlerTest.h"

#include <map>
#include <memory>
#include <set>

/** What attaching a LUN and attaching a snapshot differ in. */
struct AttachKind
{
    std::string name;
    std::string attach;
    std::string detach;
    std::string idEmpty;
    std::string notValid;
    std::string get;              ///< resource of one object
    std::string list;             ///< path of a list, up to the association
    std::string type;             ///< type code
    std::vector<int> attachOrder; ///< handlers in the order in which they are fetched
    std::vector<int> detachOrder;
    int (CDiskAttachHandler::*attachToHost)(const std::string&, const std::string&, const std::string&);
    int (CDiskAttachHandler::*detachFromHost)(const std::string&, const std::string&);
};

inline void PrintTo(const AttachKind& kind, std::ostream* out)
{
    *out << kind.name;
}

std::vector<AttachKind> attachKinds();

/** A device manager of which handlers can be missing. */
class PartialDeviceManager : public CDeviceManagerImpl
{
public:
    CHandler* getHandler(HANDLERTYPE type) override
    {
        asked.push_back(type);
        if (type == LUNGROUP_HANDLER && lunGroups != nullptr) {
            return lunGroups.get();
        }
        return missing.count(type) != 0 ? nullptr : CDeviceManagerImpl::getHandler(type);
    }

    std::set<int> missing;
    std::unique_ptr<CHandler> lunGroups; ///< in place of its own
    std::vector<int> asked;
};

/** Attaching and detaching object "7" for the initiator "iqn", against an array made of single answers. */
class AttachTest : public HandlerTest, public testing::WithParamInterface<AttachKind>
{
protected:
    AttachTest() { describeArray(); }

    /** An array with the object, the initiator and its host; nothing asked of it yet. */
    void describeArray();

    /** The array's answer to every request that begins so; the longest beginning counts. */
    void onRequest(const std::string& beginning, const Reply& reply) { m_answers[beginning] = {reply}; }
    /** The same with one answer after the other; the last one stays. */
    void onRequests(const std::string& beginning, const std::vector<Reply>& replies)
    {
        m_answers[beginning] = replies;
    }

    /** An object with an ID. */
    static Reply object(const std::string& id, const std::string& more = "")
    {
        return Reply::object("{\"ID\":\"" + id + "\"" + more + "}");
    }

    int attach(const std::string& id = "7", const std::string& initiator = "iqn")
    {
        return (handler.*GetParam().attachToHost)(id, initiator, "192.0.2.9");
    }

    int detach(const std::string& id = "7", const std::string& initiator = "iqn")
    {
        return (handler.*GetParam().detachFromHost)(id, initiator);
    }

    /** deeds(), with "SECONDS" for the number in generated names. */
    Lines named() const;

    std::string listOf(const std::string& otherType, const std::string& otherId) const
    {
        return "GET " + GetParam().list + "filter=ID:7&TYPE=" + GetParam().type +
               "&ASSOCIATEOBJTYPE=" + otherType + "&ASSOCIATEOBJID=" + otherId + "&range=[0-65535]";
    }

    std::string read() const { return "GET " + GetParam().get + "/7"; }

    PartialDeviceManager partial;
    CDiskAttachHandlerImpl handler{&partial};

private:
    Reply answer(const SentRequest& request);

    std::map<std::string, std::vector<Reply>> m_answers;
};

#endif
