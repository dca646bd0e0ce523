// What a list holds at its peak beside the records that it gives, by the size of the list.

#include "Rounds.h"
#include "Servers.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/** A figure of this process in bytes: "VmRSS" now, "VmHWM" at its peak. */
double memory(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == name + ":") {
            double kibibytes = 0;
            status >> kibibytes;
            return kibibytes * 1024;
        }
    }
    throw std::runtime_error("no " + name);
}

double textBytes(const std::string& text)
{
    const std::string empty;
    return text.capacity() > empty.capacity() ? static_cast<double>(text.capacity() + 1) : 0;
}

double bytesOf(const std::vector<LunMO>& luns)
{
    double bytes = 0;
    for (const LunMO& lun : luns) {
        bytes += sizeof(lun);
        for (const std::string* text : {&lun.ID, &lun.NAME, &lun.PARENTID, &lun.PARENTNAME, &lun.DESCRIPTION,
                                        &lun.WWN, &lun.OWNINGCONTROLLER, &lun.WORKINGCONTROLLER}) {
            bytes += textBytes(*text);
        }
    }
    return bytes;
}

/** Lists in a process of its own; what it holds at its peak beside the records. */
double peakOfList(const bench::Server& server, unsigned count)
{
    std::array<int, 2> told{};
    if (pipe(told.data()) != 0) {
        throw std::runtime_error("no pipe");
    }
    const pid_t child = fork();
    if (child == 0) {
        double ratio = 0;
        try {
            bench::Sdk sdk(server);
            sdk.call();
            const double before = memory("VmRSS");
            const std::vector<LunMO> luns = sdk.list(count);
            ratio = luns.size() == count ? (memory("VmHWM") - before) / bytesOf(luns) : 0;
        } catch (const std::exception& problem) {
            std::fprintf(stderr, "bench: a list of %u: %s\n", count, problem.what());
        }
        const ssize_t written = write(told[1], &ratio, sizeof ratio);
        _exit(written == sizeof ratio ? 0 : 1);
    }
    close(told[1]);
    double ratio = 0;
    const ssize_t got = read(told[0], &ratio, sizeof ratio);
    close(told[0]);
    waitpid(child, nullptr, 0);
    return got == sizeof ratio ? ratio : 0;
}

} // namespace

void bench::listRows(bool isShort)
{
    const Servers server;
    for (const unsigned count : {1000U, 10000U, 200000U}) {
        if (isShort && count > 10000) {
            break;
        }
        const std::string row = "list of " + std::to_string(count) + ", peak memory against its records";
        std::vector<double> ratios;
        for (unsigned round = 0; round < (count > 10000 ? 1U : 3U); ++round) {
            ratios.push_back(peakOfList(server[0], count));
        }
        if (ratios.back() == 0) {
            tellFailure(row, "the list fails");
            continue;
        }
        tellRow(row, ratios, count < 10000 ? NO_AIM : 1.5);
        tellPoint("peak memory of a list beside its records", "records", count, ratios);
    }
}
