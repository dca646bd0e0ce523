#ifndef UNIT_HANDLERS_EXCHANGE_H
#define UNIT_HANDLERS_EXCHANGE_H

#include "unit/handlers/HandlerTest.h"

#include <functional>

// What most operations are answered with.
inline const Reply CREATED = Reply::object(R"({"ID":"9"})");
inline const Reply TWO_AND_ONE_WITHOUT_ID = Reply::list(R"([{"ID":"1"},{"NAME":"x"},{"ID":"2"}])");

/** A call of an operation, the request that it is to send, and what is to be seen around it. */
struct Exchange
{
    using Call = std::function<void(CDeviceManagerImpl&)>;

    Exchange(const std::string& operationName, Call callOfIt, const std::string& requestLine)
        : operation(operationName), call(std::move(callOfIt)), request(requestLine),
          errorsNamed(operationName), frames{{operationName, operationName, "leave "}}
    {
    }

    /** Tells calls of one operation apart. */
    Exchange& variant(const std::string& text);
    /** Its lines name it otherwise. */
    Exchange& loggedAs(const std::string& name);
    /** It closes with its enter text. */
    Exchange& closingAsEntered();
    /** The request is a worker's, which has lines and a record of its own; errors name errorName. */
    Exchange& through(const std::string& worker, const std::string& errorName);
    /** The same, with a worker that writes its record under another name. */
    Exchange& throughRecordedAs(const std::string& worker, const std::string& recordName);
    /** Its errors name its caller. */
    Exchange& errorsAs(const std::string& caller);
    /** What is sent and seen before the request. */
    Exchange& after(const Reply& reply, const Lines& seen);
    /** It reads the answer: this one, upon which more is seen before its record. */
    Exchange& reading(const Reply& answer, const Lines& seen = {});
    /** What the operation goes on with once its worker is through. */
    Exchange& then(const Reply& answer, const Lines& seen);

    Lines succeeded() const;
    Lines failed(const std::string& message, int code) const;
    void run(CDeviceManagerImpl& manager) const { call(manager); }
    std::string name() const { return operation + variantText; }

    struct FrameNames
    {
        std::string record;
        std::string logged;
        std::string close;
    };

    std::string operation;
    std::string variantText;
    Call call;
    std::string request;
    std::string errorsNamed;
    std::vector<FrameNames> frames; ///< outermost first
    bool reads = false;
    std::vector<Reply> repliesBefore;
    Lines seenBefore;
    Reply answer = Reply::ok();
    Lines seenAfter;
    std::vector<Reply> repliesThen;
    Lines seenThen;
};

// The operations of each kind of object, request by request.
std::vector<Exchange> lunExchanges();
std::vector<Exchange> lunGroupExchanges();
std::vector<Exchange> snapshotExchanges();
std::vector<Exchange> hostExchanges();
std::vector<Exchange> hostGroupExchanges();
std::vector<Exchange> iscsiExchanges();
std::vector<Exchange> fcExchanges();
std::vector<Exchange> mappingViewExchanges();
std::vector<Exchange> portExchanges();

inline void PrintTo(const Exchange& exchange, std::ostream* out)
{
    *out << exchange.name();
}

inline std::string exchangeName(const testing::TestParamInfo<Exchange>& info)
{
    return info.param.name();
}

#endif
