#ifndef SIMULATOR_SIMULATOR_H
#define SIMULATOR_SIMULATOR_H

#include "Certificates.h"
#include "Command.h"
#include "Options.h"
#include "StateDir.h"
#include "export/IscsiExport.h"
#include "http/ControlServer.h"

#include <memory>

namespace arraysim {

/** Tells in the log what initiators begin and cease to see. */
class ExposureLog : public ExposureObserver
{
public:
    explicit ExposureLog(Journal& journal) : m_journal(journal) {}
    void exposureChanged(const ObjectKey& lun, const ObjectKey& initiator, bool appeared) override;

private:
    Journal& m_journal;
};

/** The whole array: it serves from its making on, until it goes. */
class Simulator
{
public:
    /** Throws std::runtime_error where it cannot serve as the options ask. */
    explicit Simulator(const Options& options);
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /** Prints where it is to be found, and writes the files with its ports. */
    void announce() const;
    /** What a command beside it needs to find it, and nothing that points to another array. */
    Command::Environment environment() const;

private:
    int start();
    std::string controlUrl() const;

    const Options m_options;
    const std::unique_ptr<StateDir> m_state;
    const CertificateFiles m_files;
    const std::string m_password;
    Journal m_journal;
    Store m_store;
    World m_world;
    ExposureLog m_exposureLog;
    const ExposureWatch m_logWatch;
    ConfigFs m_configFs;
    const std::unique_ptr<IscsiExport> m_disks; ///< null: no disks
    Sessions m_sessions;
    ArrayInterface m_array;
    Faults m_faults;
    ArrayServer m_server;
    const int m_port;
    const ArrayFacts m_facts;
    ControlServer m_control;
    const int m_controlPort; ///< -1: none
};

} // namespace arraysim

#endif
