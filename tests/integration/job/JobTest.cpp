#include "JobTest.h"

#include <ovra/rest/RestSettings.h>

#include <algorithm>
#include <csignal>
#include <regex>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

using namespace ovra::tessel;

namespace {

std::string stem(const std::string& name)
{
    static const std::regex host("^tessel_host(_[0-9]+)+$");
    static const std::regex initiator("^tessel_[0-9a-f]{16}(_[0-9]+)?$");
    return std::regex_match(name, host)        ? "tessel_host"
           : std::regex_match(name, initiator) ? "tessel_initiator"
                                               : name;
}

std::string listed(const std::vector<Json::Value>& records, const char* member)
{
    std::vector<std::string> texts;
    for (const Json::Value& record : records) {
        texts.push_back(stem(record[member].asString()));
    }
    std::sort(texts.begin(), texts.end());
    std::string list;
    for (const std::string& text : texts) {
        list += (list.empty() ? "" : " ") + text;
    }
    return "[" + list + "]";
}

} // namespace

JobTest::JobTest(tessel_test::ArraySimOptions simOptions) : sim(std::move(simOptions))
{
    RestSettings settings; // this process reads its environment once
    settings.caFile = sim.caFile();
    RestSetSettings(settings);
    setenv("OVRA_REST_CA_FILE", sim.caFile().c_str(), 1);
    setenv("ARRAY_IP", sim.ip().c_str(), 1);
    setenv("ARRAY_PORT", std::to_string(sim.port()).c_str(), 1);
    setenv("ARRAY_PASSWORD", sim.password().c_str(), 1);
    setenv("JOB_TRIES", "8", 1);
    setenv("JOB_PAUSE", "100", 1);
    options.pauseMilliseconds = 5;
}

void JobTest::login(Array& who) const
{
    who.login(sim.ip(), sim.port(), sim.user(), sim.password());
}

AccessResult JobTest::show(const std::string& lun, const std::string& initiator)
{
    return ensureVisible(array.manager(), StorageObject::lun(lun), HostInitiator::iscsi(initiator), options);
}

AccessResult JobTest::hide(const std::string& lun, const std::string& initiator)
{
    return ensureHidden(array.manager(), StorageObject::lun(lun), HostInitiator::iscsi(initiator), options);
}

void JobTest::newInitiator(const std::string& name) const
{
    Json::Value initiator;
    initiator["ID"] = name;
    sim.create("iscsi_initiator", initiator);
}

std::string JobTest::make(const std::string& resource, const std::string& name) const
{
    Json::Value object;
    object["NAME"] = name;
    if (resource == "host") {
        object["OPERATIONSYSTEM"] = 0;
    }
    return sim.create(resource, object)["ID"].asString();
}

void JobTest::put(const std::string& resource, const std::string& owner, int memberType,
                  const std::string& member) const
{
    Json::Value link;
    link["ID"] = owner;
    link["ASSOCIATEOBJTYPE"] = memberType;
    link["ASSOCIATEOBJID"] = member;
    const bool isView = resource == "mappingview";
    sim.control(isView ? "PUT" : "POST",
                "/objects/" + resource + (isView ? "/create_associate" : "/associate"), link);
}

bool JobTest::sees(const std::string& lun, const std::string& initiator)
{
    const std::string host = array.iscsiInitiators()->getIscsiInitiator(initiator).PARENTID;
    if (host.empty()) {
        return false;
    }
    const std::vector<LunMO> luns = array.luns().ofHost(host).all();
    return std::any_of(luns.begin(), luns.end(), [&](const LunMO& one) { return one.ID == lun; });
}

std::vector<Json::Value> JobTest::all(const std::string& resource) const
{
    const Json::Value records = sim.control("GET", "/objects/" + resource)["data"];
    return {records.begin(), records.end()};
}

std::vector<Json::Value> JobTest::associated(const std::string& resource, int type,
                                             const std::string& id) const
{
    const Json::Value records =
        sim.control("GET", "/objects/" + resource + "/associate?ASSOCIATEOBJTYPE=" + std::to_string(type) +
                               "&ASSOCIATEOBJID=" + id)["data"];
    return {records.begin(), records.end()};
}

Graph JobTest::graph() const
{
    Graph graph;
    for (const Json::Value& view : all("mappingview")) {
        const std::string id = view["ID"].asString();
        const auto hosts = associated("hostgroup", MO_MAPPINGVIEW, id);
        const auto luns = associated("lungroup", MO_MAPPINGVIEW, id);
        if (hosts.empty() && luns.empty()) {
            ++graph.leftovers;
        } else {
            graph.bound.push_back("view " + stem(view["NAME"].asString()) + " " + listed(hosts, "NAME") +
                                  " " + listed(luns, "NAME"));
        }
    }
    const auto group = [&](const std::string& resource, int type, const std::string& memberResource,
                           const char* member) {
        for (const Json::Value& record : all(resource)) {
            const auto members = associated(memberResource, type, record["ID"].asString());
            if (members.empty() && record["ISADD2MAPPINGVIEW"].asString() != "true") {
                ++graph.leftovers;
            } else {
                graph.bound.push_back(resource + " " + stem(record["NAME"].asString()) + " " +
                                      listed(members, member));
            }
        }
    };
    group("hostgroup", MO_HOSTGROUP, "host", "NAME");
    group("lungroup", MO_LUNGROUP, "lun", "NAME");
    for (const Json::Value& host : all("host")) {
        const auto initiators = associated("iscsi_initiator", MO_HOST, host["ID"].asString());
        if (initiators.empty()) {
            ++graph.leftovers;
        } else {
            graph.bound.push_back("host " + stem(host["NAME"].asString()) + " " + listed(initiators, "ID"));
        }
    }
    std::sort(graph.bound.begin(), graph.bound.end());
    return graph;
}

unsigned long JobTest::requestsOf(const std::function<void()>& call) const
{
    sim.clearJournal();
    call();
    return sim.journal().size();
}

pid_t JobTest::start(const std::vector<std::string>& arguments, int output) const
{
    std::vector<char*> argv{const_cast<char*>(ACCESS_JOB)};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("fork");
    }
    if (child == 0) {
        if (output >= 0) {
            dup2(output, STDOUT_FILENO);
        }
        execv(ACCESS_JOB, argv.data());
        _exit(127);
    }
    return child;
}

int JobTest::statusOf(pid_t process)
{
    int status = 0;
    waitpid(process, &status, 0);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

int JobTest::run(const std::vector<std::string>& arguments, std::string* output) const
{
    int ends[2] = {-1, -1};
    if (pipe(ends) != 0) {
        throw std::runtime_error("pipe");
    }
    const pid_t child = start(arguments, ends[1]);
    close(ends[1]);
    char text[256];
    for (ssize_t read = 0; (read = ::read(ends[0], text, sizeof(text))) > 0;) {
        if (output != nullptr) {
            output->append(text, static_cast<size_t>(read));
        }
    }
    close(ends[0]);
    return statusOf(child);
}
