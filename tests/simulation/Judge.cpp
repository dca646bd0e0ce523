#include "simulation/Judge.h"

#include <algorithm>

namespace simulation {

void Judge::find(const std::string& fault)
{
    if (m_fault.empty()) {
        m_fault = fault;
        m_scheduler.killAll();
    }
}

void Judge::begins(const Process& process, const Errand& errand)
{
    m_errands[process.pid] = errand;
    History& history = m_histories[errand.lun];
    ++history.errands;
    history.hasSingleSteps = history.hasSingleSteps || !errand.isWhole;
}

std::optional<Errand> Judge::errandOf(const Process& process) const
{
    const auto found = m_errands.find(process.pid);
    return found == m_errands.end() ? std::nullopt : std::make_optional(found->second);
}

void Judge::ends(const Process& process, bool isWell)
{
    const auto found = m_errands.find(process.pid);
    if (found == m_errands.end()) {
        return; // it was killed
    }
    const Errand errand = found->second;
    m_errands.erase(found);
    History& history = m_histories[errand.lun];
    --history.errands;
    history.isCutOff = !isWell || (history.isCutOff && !errand.isReleasing);
    if (!isWell || !errand.isWhole || !errand.isReleasing || history.errands != 0 || history.hasSingleSteps ||
        m_isScannedWithoutLock) {
        return;
    }
    for (const auto& [name, disk] : m_kernel.disks()) {
        if (isOurs(disk) && disk.known.id == errand.lun && m_kernel.unitOf(disk).id.empty()) {
            find("LUN " + errand.lun + " is released, and its disk " + name + " stays");
        }
    }
    if (m_array.shows(errand.lun)) {
        find("LUN " + errand.lun + " is released, and shown still");
    }
}

void Judge::isKilled(const Process& process)
{
    m_isAnyKilled = true;
    const auto found = m_errands.find(process.pid);
    if (found != m_errands.end()) {
        --m_histories[found->second.lun].errands;
        m_histories[found->second.lun].isCutOff = true;
        m_errands.erase(found);
    }
}

void Judge::asked(const Process& process, const Disk& disk, const Unit& answer)
{
    m_asked[{process.pid, disk.name}] = {disk.instance, answer.id, changes()};
}

void Judge::removes(const Process& process, const Disk& disk)
{
    const auto errand = m_errands.find(process.pid);
    if (errand == m_errands.end() || !isOurs(disk)) {
        find(process.name + " removes " + disk.name + ", which is not of this array");
        return;
    }
    const Errand& own = errand->second;
    if (own.isWhole && isWithoutLock(process)) {
        find(process.name + " removes " + disk.name + " without the lock");
    }
    const Unit unit = m_kernel.unitOf(disk);
    const auto found = m_asked.find({process.pid, disk.name});
    const bool wasAsked = found != m_asked.end();
    const bool isSame = wasAsked && found->second.instance == disk.instance;
    const bool wasRight = wasAsked && found->second.id == own.lun;
    if (unit.id == own.lun) {
        const bool isRenewed = !own.isWhole || disk.known.id != own.lun;
        if (!own.isReleasing && !isRenewed) {
            find(process.name + " removes " + disk.name + ", which it looks for");
        }
        return;
    }
    if (unit.id.empty() && own.isWhole && own.isReleasing && disk.known.id == own.lun) {
        return; // dead, or away: it was the object, and the object goes
    }
    const bool isRace = isSame ? wasRight && found->second.changes != changes()
                               : wasRight && !own.isWhole; // who takes no lock may meet another's removal
    if (!isRace) {
        find(process.name + " removes " + disk.name + ", which is " +
             (unit.id.empty() ? "away" : "LUN " + unit.id) + ", for LUN " + own.lun);
    }
}

void Judge::readsState(const Process& process, const Disk& disk)
{
    m_states[{process.pid, disk.instance}] = disk.state;
}

/** It may remove one that has gone away since it was started, as is known. */
void Judge::scriptRemoves(int starter, const Disk& disk)
{
    if (!m_kernel.isUp(disk.host) && m_states[{starter, disk.instance}] != "running") {
        find("the rescan script removes " + disk.name + ", which was away for a moment when it was started");
    }
}

void Judge::handsOut(const Process& process, const std::string& path)
{
    const auto errand = m_errands.find(process.pid);
    if (errand == m_errands.end()) {
        return; // it was killed
    }
    const Errand& own = errand->second;
    const std::string name = path.substr(path.rfind('/') + 1);
    const auto found = m_asked.find({process.pid, name});
    if (found == m_asked.end() || found->second.id != own.lun) {
        find(process.name + " gets " + path + " for LUN " + own.lun + ", which has not answered as it");
        return;
    }
    const Disk* const disk = m_kernel.find(name);
    if (disk != nullptr && disk->instance == found->second.instance && found->second.changes == changes() &&
        m_kernel.isUp(disk->host) && m_kernel.unitOf(*disk).id != own.lun) {
        find(process.name + " gets " + path + " for LUN " + own.lun + ", which is another disk");
    }
}

void Judge::scans(const Process& process)
{
    if (isWithoutLock(process)) {
        find(process.name + " scans without the lock");
    }
}

void Judge::sends(const Process& process, const std::string& request, bool isChange)
{
    std::string& unread = m_unread[process.pid];
    if (isChange && unread == request) {
        find(process.name + " sends again what may have been carried out: " + request);
    }
    unread = isChange ? request : "";
}

void Judge::atRest(int semaphore)
{
    if (m_scheduler.isStuck()) {
        find("a process waits for ever");
    }
    if (semaphore != 1) {
        find("the lock is " + std::string(semaphore == 0 ? "lost" : "free more than once"));
    }
    disksAtRest();
    arrayAtRest();
}

void Judge::disksAtRest()
{
    for (const auto& [name, disk] : m_kernel.disks()) {
        const History& history = m_histories[disk.known.id];
        if (isOurs(disk) && m_kernel.isUp(disk.host) && m_kernel.unitOf(disk).id != disk.known.id &&
            !history.hasSingleSteps && !history.isCutOff && !m_isScannedWithoutLock) {
            find("at rest " + name + " is a dead disk of LUN " + disk.known.id);
        }
    }
}

/** Without a kill or a lost answer the host has one of each of its own objects. */
void Judge::arrayAtRest()
{
    if (m_isAnyKilled || m_isAnswerLost || !m_fault.empty()) {
        return;
    }
    for (const char* const resource : {"host", "hostgroup", "mappingview", "lungroup"}) {
        const Json::Value records = m_array.all(resource);
        const auto own = std::count_if(records.begin(), records.end(), [](const Json::Value& record) {
            return record["NAME"].asString().compare(0, 7, "tessel_") == 0;
        });
        if (own > 1) {
            find("at rest the array has " + std::to_string(own) + " of the host's own " + resource);
        }
    }
}

} // namespace simulation
