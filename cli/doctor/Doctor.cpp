#include "doctor/Finding.h"

#include "session/Secret.h"
#include "text/Display.h"

#include <algorithm>
#include <array>

namespace tesselctl {
namespace {

constexpr std::array<const char*, 3> WORDS = {"ok", "warning", "failure"};

const char* wordOf(Verdict verdict)
{
    return WORDS.at(static_cast<size_t>(verdict));
}

std::string textOf(const Findings& findings)
{
    std::string text;
    for (const auto& finding : findings) {
        std::string head = wordOf(finding.verdict);
        head.resize(9, ' ');
        text += head + printable(finding.subject) + ": " + printable(finding.found) + "\n";
        text += finding.advice.empty() ? "" : "         -> " + printable(finding.advice) + "\n";
    }
    return text;
}

Json::Value jsonOf(const Findings& findings)
{
    Json::Value json(Json::objectValue);
    json["checks"] = Json::Value(Json::arrayValue);
    for (const auto& finding : findings) {
        Json::Value entry(Json::objectValue);
        entry["verdict"] = wordOf(finding.verdict);
        entry["subject"] = finding.subject;
        entry["found"] = validUtf8(finding.found);
        entry["advice"] = finding.advice.empty() ? Json::Value() : Json::Value(validUtf8(finding.advice));
        json["checks"].append(entry);
    }
    return json;
}

bool has(const Findings& findings, Verdict verdict)
{
    return std::any_of(findings.begin(), findings.end(),
                       [&](const Finding& f) { return f.verdict == verdict; });
}

void doctor(Context& context)
{
    Findings findings;
    for (auto* check : {checkRights, checkTools, checkRescanScript, checkKorvex, checkUdev, checkRescanLock,
                        checkLogs, checkTrust, checkArray}) {
        const Findings found = check(context);
        findings.insert(findings.end(), found.begin(), found.end());
    }
    const bool isFit = !has(findings, Verdict::FAILURE);
    const char* sum = !isFit                            ? "This host is not fit to scan: see the failures."
                      : has(findings, Verdict::WARNING) ? "This host can scan; look at the warnings."
                                                        : "This host is fit to scan.";
    Json::Value json = jsonOf(findings);
    json["fit"] = isFit;
    context.printer().result(textOf(findings) + "\n" + sum + "\n", json);
    context.endWith(isFit ? ExitCode::SUCCESS : ExitCode::FAILURE);
}

} // namespace

Commands doctorCommands()
{
    return {{{"doctor"},
             "look whether this host is fit to scan, and the array in reach; changes nothing",
             {},
             {},
             {},
             doctor}};
}

} // namespace tesselctl
