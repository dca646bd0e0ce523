#ifndef SUPPORT_RECORDINGPLATFORM_H
#define SUPPORT_RECORDINGPLATFORM_H

#include <ovra/rest/RestRequest.h>

#include <json/value.h>

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

/** One request as the REST library was asked to send it. */
struct SentRequest
{
    bool onSession = false; ///< sent with a session key
    unsigned int sessionKey = 0;
    std::string server; ///< of SetServerUrl
    REST_REQUEST_MODE_E mode = REST_GET;
    std::string path;
    bool flag = false;
    std::vector<std::pair<int, std::string>> headers;
    std::vector<std::pair<std::string, std::string>>
        body; ///< key and typed value, e.g. "int:11", "string:db"

    std::string text() const; ///< "POST /lun TYPE=int:11 NAME=string:db"
};

/** What the REST library hands back. */
struct Reply
{
    int sent = 0; ///< return value of SendRequest
    int code = 0; ///< error code of the answer
    std::string description;
    std::vector<Json::Value> records;
    std::vector<std::string> headers;

    static Reply ok(std::vector<Json::Value> records = {});
    static Reply object(const std::string& json); ///< one record, given as JSON text
    static Reply list(const std::string& json);   ///< a JSON array: one record an element
    static Reply error(int code, const std::string& description = "no");
    static Reply noAnswer(int sent = 7);
};

/**
 * The platform libraries, replaced by ones that write down every call in one journal and answer from a
 * script. A program that links this links neither libOvraRestAPI nor libOvraLogAPI.
 *
 * Journal lines, in the order of the calls:
 *   "debug: text", "info: text", "warn: text", "error: text"   run log
 *   "record NAME RESULT"                                       interface record ("record! ..." of the error
 * function) "GET /lun/7", "POST /lun TYPE=int:11 ..."                  requests "LogInit INI DIR", "LogFini",
 * "addUser ...", "removeUser"  the rest and whatever note() adds.
 */
class RecordingPlatform
{
public:
    static RecordingPlatform& get();

    void reset(); ///< empties journal, script and registry; later answers are ok without records

    void reply(Reply reply);                                         ///< one answer, in order
    void replyWith(std::function<Reply(const SentRequest&)> answer); ///< once the script is used up

    std::vector<std::string> journal() const;
    std::vector<std::string> lines(const std::string& prefix) const; ///< journal lines that begin with prefix
    std::vector<SentRequest> requests() const;
    std::vector<std::vector<std::string>> interfaceRecords() const; ///< the 11 arguments of each
    std::vector<std::string> tags() const;                          ///< product tag of each log call

    bool acceptUsers = true; ///< what addUser answers
    bool ipValid = true;     ///< what CheckIPValid answers
    int logInitResult = 0;
    int logFiniResult = 0;

    // Called by the replaced libraries, and by a test that interposes other functions.
    void note(const std::string& line);
    void record(bool error, std::vector<std::string> arguments);
    void tag(const std::string& productTag);
    Reply send(const SentRequest& request);

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_journal;
    std::deque<Reply> m_script;
    std::function<Reply(const SentRequest&)> m_answer;
    std::vector<SentRequest> m_requests;
    std::vector<std::vector<std::string>> m_records;
    std::vector<std::string> m_tags;
};

#endif
