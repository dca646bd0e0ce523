#include "Simulator.h"

#include "ServerNames.h"

#include <iostream>

namespace arraysim {
namespace {

std::unique_ptr<StateDir> stateDir(const Options& options)
{
    return options.temporary ? StateDir::temporary() : std::make_unique<StateDir>(options.stateDir);
}

CertificateFiles certificates(const Options& options, const std::string& stateDir)
{
    if (!options.certificate.empty()) {
        return {options.certificate, options.certificate, options.key};
    }
    return provideCertificates(stateDir, serverNames(options.listen));
}

/** An address and a port as they stand in a URL. */
std::string endpoint(const std::string& address, int port)
{
    const bool isIpv6 = address.find(':') != std::string::npos;
    return (isIpv6 ? "[" + address + "]" : address) + ":" + std::to_string(port);
}

/** Where clients on this host reach what listens on the address. */
std::string reachable(const std::string& address)
{
    return address == "0.0.0.0" ? "127.0.0.1" : address == "::" ? "::1" : address;
}

std::unique_ptr<IscsiExport> disks(const Options& options, const StateDir& state, World& world,
                                   Journal& journal, ConfigFs& config)
{
    if (options.exportIscsi.empty()) {
        return nullptr;
    }
    return std::make_unique<IscsiExport>(world, journal, config, options.exportIscsi, state.file("disks"));
}

Json::Value busyFault(const Options& options)
{
    Json::Value fault(Json::objectValue);
    fault["action"] = "error";
    fault["description"] = "The array is busy: try again later.";
    fault["code"] = options.busyCode;
    fault["share"] = options.busyShare;
    fault["seed"] = options.busySeed;
    fault["count"] = 0;
    return fault;
}

void publishPort(const std::string& file, int port)
{
    if (!file.empty()) {
        writeWhole(file, std::to_string(port) + "\n", 0644);
    }
}

} // namespace

void ExposureLog::exposureChanged(const ObjectKey& lun, const ObjectKey& initiator, bool appeared)
{
    m_journal.note(std::string(appeared ? "exposed " : "withdrew ") + objectType(lun.first).title + " " +
                   lun.second + (appeared ? " to " : " from ") + initiator.second);
}

Simulator::Simulator(const Options& options)
    : m_options(options), m_state(stateDir(options)), m_files(certificates(options, m_state->path())),
      m_password(loginPassword(options, m_state->file("password"))),
      m_journal(options.log, options.controlPort >= 0), m_store(m_state->file("array.db")), m_world(m_store),
      m_exposureLog(m_journal), m_logWatch(m_world, m_exposureLog),
      m_disks(disks(options, *m_state, m_world, m_journal, m_configFs)),
      m_sessions(
          {options.user, m_password, options.sessionLimit, std::chrono::seconds(options.sessionTimeout)},
          m_world.deviceId()),
      m_array(m_world, m_sessions),
      m_server(m_array, m_sessions, m_faults, m_journal,
               {m_files.certificate, m_files.key, options.connectionLimit, options.answerMs}),
      m_port(start()), m_facts{"https://" + endpoint(reachable(options.listen), m_port), m_files.ca,
                               pinnedKey(m_files.certificate), options.user},
      m_control(m_world, m_array, m_sessions, m_faults, m_journal, m_server, m_facts),
      m_controlPort(options.controlPort < 0 ? -1 : m_control.start(options.controlPort))
{
}

/** What the options ask of the array is in force before the first client can come. */
int Simulator::start()
{
    m_world.settling = m_options.settling;
    if (m_options.busyShare > 0) {
        m_faults.add(busyFault(m_options));
    }
    return m_server.start(m_options.listen, m_options.port);
}

Simulator::~Simulator()
{
    m_control.stop();
    m_server.stop();
    m_journal.note("stopped");
}

std::string Simulator::controlUrl() const
{
    return m_controlPort < 0 ? std::string() : "http://127.0.0.1:" + std::to_string(m_controlPort);
}

void Simulator::announce() const
{
    std::cout << "array: " << m_facts.url << "\nCA file: " << m_facts.caFile
              << "\npinned key: " << m_facts.pinnedKey << "\nuser: " << m_facts.user << "\n";
    if (m_controlPort > 0) {
        std::cout << "control: " << controlUrl() << "\n";
        publishPort(m_options.controlPortFile, m_controlPort);
    }
    std::cout << std::flush;
    publishPort(m_options.portFile, m_port);
}

Command::Environment Simulator::environment() const
{
    const std::string address = reachable(m_options.listen);
    return {
        {"TESSEL_ARRAY", endpoint(address, m_port)},
        {"TESSEL_USER", m_options.user},
        {"TESSEL_PASSWORD", m_password},
        {"TESSEL_TOKEN", ""},
        {"TESSEL_COOKIE", ""},
        {"OVRA_REST_CA_FILE", m_files.ca},
        {"OVRA_REST_PINNED_KEY", ""},
        {"OVRA_REST_INSECURE", ""},
        {"TESSEL_ARRAYSIM_ADDRESS", address},
        {"TESSEL_ARRAYSIM_PORT", std::to_string(m_port)},
        {"TESSEL_ARRAYSIM_CONTROL", controlUrl()},
        {"TESSEL_ARRAYSIM_PINNED_KEY", m_facts.pinnedKey},
        {"TESSEL_ARRAYSIM_STATE", m_state->path()},
    };
}

} // namespace arraysim
