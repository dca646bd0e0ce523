#include "metrics/AuditTotals.h"

#include "logs/LogFiles.h"

#include <json/reader.h>

#include <array>
#include <fstream>
#include <memory>

namespace tesselctl {
namespace {

struct Kind
{
    const char* operation;
    AuditTotals::ByResult AuditTotals::*totals;
};

constexpr std::array<Kind, 12> KINDS = {{{"attachLunToHost", &AuditTotals::attaches},
                                         {"attachSnapshotToHost", &AuditTotals::attaches},
                                         {"ensureVisible", &AuditTotals::attaches},
                                         {"LocalDisk::attach", &AuditTotals::attaches},
                                         {"scanLunAfterAttach", &AuditTotals::scans},
                                         {"scanSnapshotAfterAttach", &AuditTotals::scans},
                                         {"detachLunFromHost", &AuditTotals::removals},
                                         {"detachSnapshotFromHost", &AuditTotals::removals},
                                         {"ensureHidden", &AuditTotals::removals},
                                         {"LocalDisk::release", &AuditTotals::removals},
                                         {"scanLunBeforeDetach", &AuditTotals::removals},
                                         {"scanSnapshotBeforeDetach", &AuditTotals::removals}}};

void add(Total& total, double seconds)
{
    ++total.count;
    total.seconds += seconds;
}

void add(AuditTotals& totals, const Json::Value& line)
{
    const std::string operation = line["operation"].asString();
    if (line.isMember("step")) {
        if (line["step"].asString() == "scanned" && operation.compare(0, 4, "scan") != 0) { // of LocalDisk
            add(totals.scans[{operation, "done"}], line["seconds"].asDouble());
        }
        return;
    }
    for (const Kind& kind : KINDS) {
        if (operation == kind.operation) {
            add((totals.*kind.totals)[{operation, line["done"].asBool() ? "done" : "failed"}],
                line["seconds"].asDouble());
        }
    }
    if (line.isMember("lockSeconds")) {
        add(totals.lockWaits, line["lockSeconds"].asDouble());
    }
}

} // namespace

AuditTotals AuditTotals::of(const std::string& directory)
{
    AuditTotals totals;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    const std::vector<std::string> files = logFilesIn(directory)["audit"];
    for (const std::string& name : files) {
        std::ifstream file(name);
        for (std::string line; std::getline(file, line);) {
            try {
                Json::Value value;
                if (reader->parse(line.data(), line.data() + line.size(), &value, nullptr)) {
                    add(totals, value);
                }
            } catch (const Json::Exception&) { // a line that somebody else has written
            }
        }
    }
    return totals;
}

} // namespace tesselctl
