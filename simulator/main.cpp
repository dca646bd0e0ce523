#include "Certificates.h"
#include "Options.h"
#include "StateDir.h"
#include "export/IscsiExport.h"
#include "http/ControlServer.h"
#include "model/Exposure.h"
#include "types/Common.h"

#include <csignal>
#include <iostream>
#include <unistd.h>

using namespace arraysim;

namespace {

/** Tells in the log what initiators begin and cease to see. */
class ExposureLog : public ExposureObserver
{
public:
    explicit ExposureLog(Journal& journal) : m_journal(journal) {}
    void exposureChanged(const ObjectKey& lun, const ObjectKey& initiator, bool appeared) override
    {
        m_journal.note(std::string(appeared ? "exposed " : "withdrew ") + objectType(lun.first).title + " " +
                       lun.second + (appeared ? " to " : " from ") + initiator.second);
    }

private:
    Journal& m_journal;
};

sigset_t stopSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    return signals;
}

/** Turns the end of the standard input into a SIGTERM for this process. */
void stopWithStdin()
{
    std::thread([] {
        char byte;
        while (::read(STDIN_FILENO, &byte, 1) > 0) {
        }
        ::kill(::getpid(), SIGTERM);
    }).detach();
}

CertificateFiles certificates(const Options& options, const std::string& stateDir)
{
    if (!options.certificate.empty()) {
        return {options.certificate, options.certificate, options.key};
    }
    return provideCertificates(stateDir, options.listen);
}

std::string serverUrl(const std::string& address, int port)
{
    const bool isIpv6 = address.find(':') != std::string::npos;
    return "https://" + (isIpv6 ? "[" + address + "]" : address) + ":" + std::to_string(port);
}

void publishPort(const std::string& file, int port)
{
    if (!file.empty()) {
        writeWhole(file, std::to_string(port) + "\n", 0644);
    }
}

void run(const Options& options)
{
    const sigset_t signals = stopSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    const StateDir state(options.stateDir);
    const CertificateFiles files = certificates(options, state.path());
    setCompanyId(options.companyId);
    Journal journal(options.log);
    Store store(state.file("array.db"));
    World world(store);
    world.settling = options.settling;
    ExposureLog exposureLog(journal);
    const ExposureWatch logWatch(world, exposureLog);
    std::optional<IscsiExport> disks;
    std::optional<ExposureWatch> diskWatch;
    if (!options.exportIscsi.empty()) {
        disks.emplace(world, journal, options.exportIscsi, std::filesystem::absolute(state.file("disks")));
        diskWatch.emplace(world, *disks);
    }
    Sessions sessions({options.user, loginPassword(options, state.file("password")), options.sessionLimit,
                       std::chrono::seconds(options.sessionTimeout)},
                      world.deviceId());
    ArrayInterface array(world, sessions);
    Faults faults;
    ArrayServer server(array, sessions, faults, journal, files.certificate, files.key);

    const int port = server.start(options.listen, options.port);
    const ArrayFacts facts{serverUrl(options.listen, port), files.ca, pinnedKey(files.certificate),
                           options.user};
    ControlServer control(world, array, sessions, faults, journal, server, facts);
    const int controlPort = options.controlPort < 0 ? -1 : control.start(options.controlPort);

    std::cout << "array: " << facts.url << "\nCA file: " << facts.caFile
              << "\npinned key: " << facts.pinnedKey << "\nuser: " << facts.user << "\n";
    if (controlPort > 0) {
        std::cout << "control: http://127.0.0.1:" << controlPort << "\n";
        publishPort(options.controlPortFile, controlPort);
    }
    std::cout << std::flush;
    publishPort(options.portFile, port);
    if (options.stopOnStdinEof) {
        stopWithStdin();
    }

    int signal = 0;
    sigwait(&signals, &signal);
    control.stop();
    server.stop();
    journal.note("stopped");
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    int status = 0;
    if (!readOptions(argc, argv, options, status)) {
        return status;
    }
    try {
        run(options);
    } catch (const std::exception& failure) {
        std::cerr << "tessel-arraysim: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
