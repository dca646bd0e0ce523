#include "unit/handlers/attach/AttachTest.h"

#include <regex>

std::vector<AttachKind> attachKinds()
{
    return {{"Lun",
             "attachLunToHost",
             "detachLunFromHost",
             "lunID is empty! ",
             "The lunID is not valid! ",
             "/lun",
             "/lun/associate?",
             "11",
             {2, 3, 7, 4, 5, 6},
             {2, 5, 3, 4, 6, 7},
             &CDiskAttachHandler::attachLunToHost,
             &CDiskAttachHandler::detachLunFromHost},
            {"Snapshot",
             "attachSnapshotToHost",
             "detachSnapshotFromHost",
             "snapshotID is empty! ",
             "The snapshotID is not valid! ",
             "/SNAPSHOT",
             "/snapshot/associate?",
             "27",
             {8, 3, 7, 4, 6, 5},
             {6, 8, 5, 4, 7, 3},
             &CDiskAttachHandler::attachSnapshotToHost,
             &CDiskAttachHandler::detachSnapshotFromHost}};
}

void AttachTest::describeArray()
{
    platform.reset();
    m_answers.clear();
    platform.replyWith([this](const SentRequest& request) { return answer(request); });
    onRequest("GET " + GetParam().get + "/7", object("7"));
    onRequest("GET /iscsi_initiator/iqn", object("iqn", R"(,"PARENTID":"h1")"));
    onRequest("GET /host/h1", object("h1"));
}

Reply AttachTest::answer(const SentRequest& request)
{
    const std::string text = request.text();
    std::vector<Reply>* best = nullptr;
    for (auto& entry : m_answers) { // in order, so that longer beginnings come later
        if (text.compare(0, entry.first.size(), entry.first) == 0) {
            best = &entry.second;
        }
    }
    if (best == nullptr) {
        return Reply::ok();
    }
    const Reply reply = best->front();
    if (best->size() > 1) {
        best->erase(best->begin());
    }
    return reply;
}

Lines AttachTest::named() const
{
    static const std::regex SECONDS("(host|lungroup|hostgroup|mappingview)_[0-9]{10}\\b");
    Lines lines = deeds();
    for (std::string& line : lines) {
        line = std::regex_replace(line, SECONDS, "$1_SECONDS");
    }
    return lines;
}
