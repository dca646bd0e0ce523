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
    m_begins[process.pid] = m_scheduler.now();
    m_flushed.erase(m_flushed.lower_bound({process.pid, 0}), m_flushed.lower_bound({process.pid + 1, 0}));
    History& history = m_histories[errand.lun];
    ++history.errands;
    history.hasSingleSteps = history.hasSingleSteps || errand.manner == Manner::STEP_BY_STEP;
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
    meets(isWell ? "calls that end well" : "calls that fail");
    m_isDetachCutOff =
        m_isDetachCutOff || (!isWell && errand.isReleasing && errand.manner == Manner::STEP_BY_STEP);
    const bool isAfterAll = isWell && errand.isReleasing && history.cutOffAt < m_begins[process.pid];
    history.cutOffAt = isWell ? history.cutOffAt : m_scheduler.now();
    history.isCutOff = !isWell || (history.isCutOff && !isAfterAll);
    if (!isWell || history.isCutOff || errand.manner != Manner::WHOLE || !errand.isReleasing ||
        history.isTakenAway || history.errands != 0 || history.hasSingleSteps || m_isScannedWithoutLock) {
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
        m_histories[found->second.lun].cutOffAt = m_scheduler.now();
        m_errands.erase(found);
    }
}

void Judge::asked(const Process& process, const std::string& name, const Disk& disk, const Unit& answer)
{
    m_asked[{process.pid, name}] = {disk.instance,
                                    disk.known,
                                    answer.id,
                                    changes(),
                                    process.count(Point::INQUIRY),
                                    process.count(Point::PAUSE)};
}

bool Judge::isLate(const Process& process, const Asked& asked) const
{
    return asked.inquiries == process.count(Point::INQUIRY) && asked.pauses == process.count(Point::PAUSE);
}

void Judge::hasFlushed(const Process& process, const Disk& disk)
{
    m_flushed.insert({process.pid, disk.instance});
}

namespace {

/** Whether a disk that answers so may go. */
bool mayGo(const Errand& own, const Unit& known, const std::string& id)
{
    if (own.manner == Manner::TIDY) {
        return id != known.id;
    }
    if (id == own.lun) { // the same under other names is found anew
        return own.isReleasing || own.manner == Manner::STEP_BY_STEP || known.id != own.lun;
    }
    return id.empty() && own.manner == Manner::WHOLE && own.isReleasing && known.id == own.lun;
}

} // namespace

/** Whether another process has had it open since before this one has begun. */
bool Judge::isInUse(const Process& process, const Disk& disk)
{
    const std::deque<Process>& all = m_scheduler.processes();
    return std::any_of(all.begin(), all.end(), [&](const Process& other) {
        return &other != &process && std::any_of(other.open.begin(), other.open.end(), [&](const auto& open) {
            return open.second.instance == disk.instance && open.second.since < m_begins[process.pid];
        });
    });
}

void Judge::removes(const Process& process, const Disk& disk)
{
    const auto errand = m_errands.find(process.pid);
    if (errand == m_errands.end() || !isOurs(disk)) {
        find(process.name + " removes " + disk.name + ", which is not of this array");
        return;
    }
    const Errand& own = errand->second;
    if (own.manner != Manner::STEP_BY_STEP && isWithoutLock(process)) {
        find(process.name + " removes " + disk.name + " without the lock");
    }
    if (own.manner == Manner::WHOLE && isInUse(process, disk)) {
        find(process.name + " removes " + disk.name + ", which another process has open");
    }
    const Unit unit = m_kernel.unitOf(disk);
    const bool isSaid = own.manner == Manner::STEP_BY_STEP && process.wasRefused; // and removed all the same
    if (!isSaid && disk.writtenAt != 0 && disk.writtenAt < m_begins[process.pid] &&
        unit.id == disk.known.id && m_flushed.count({process.pid, disk.instance}) == 0) {
        find(process.name + " removes " + disk.name + ", and data with it that were not written yet");
    }
    const auto found = m_asked.find({process.pid, disk.name});
    const bool isSame = found != m_asked.end() && found->second.instance == disk.instance;
    // It was away when it was looked at, and cannot be asked; it comes back at that moment.
    const bool isBack = unit.id == own.lun && m_away.count({process.pid, disk.instance}) != 0;
    if (!unit.id.empty() && !isBack && (found == m_asked.end() || !isLate(process, found->second))) {
        find(process.name + " removes " + disk.name + " without a look who it is by now");
    }
    if (mayGo(own, disk.known, unit.id) && (own.manner != Manner::TIDY || m_kernel.isUp(disk.host))) {
        meets(unit.id == disk.known.id ? "healthy disks removed"
              : unit.id.empty()        ? "dead disks removed"
                                       : "disks under other names removed");
        return;
    }
    // What changes behind the last look cannot be known; nor, without the lock, whose a name is by then.
    const bool wasRight = found != m_asked.end() && mayGo(own, found->second.known, found->second.id);
    if (wasRight && (isSame ? found->second.changes != changes() : own.manner == Manner::STEP_BY_STEP)) {
        meets("changes behind the last look");
        return;
    }
    find(process.name + " removes " + disk.name + ", which is " +
         (unit.id.empty() ? "away" : "LUN " + unit.id) + ", for LUN " + own.lun);
}

/** A map goes where each of its paths may, or is away. */
void Judge::removes(const Process& process, const Map& map)
{
    const auto errand = m_errands.find(process.pid);
    for (const auto& [name, instance] : map.paths) {
        const Disk* const disk = m_kernel.find(name);
        const std::string id = disk != nullptr && disk->instance == instance ? m_kernel.unitOf(*disk).id : "";
        if (!id.empty() && (errand == m_errands.end() || !mayGo(errand->second, disk->known, id))) {
            find(std::string(process.name)
                     .append(" removes a map of ")
                     .append(name)
                     .append(", which is LUN ") +
                 id);
        }
    }
    meets("maps removed");
}

void Judge::readsState(const Process& process, const Disk& disk)
{
    m_states[{process.pid, disk.instance}] = disk.state;
    if (disk.state != "running") {
        m_away.insert({process.pid, disk.instance});
    }
}

void Judge::startsScript(const Process& process)
{
    std::set<unsigned>& away = m_awayAtStart[process.pid];
    away.clear();
    for (const auto& [name, disk] : m_kernel.disks()) {
        if (!m_kernel.isUp(disk.host)) {
            away.insert(disk.instance);
        }
    }
}

/** It may remove one that has gone away since it was started, or since it was looked for those. */
void Judge::scriptRemoves(int starter, const Disk& disk)
{
    meets("disks removed by the rescan script");
    if (m_awayAtStart[starter].count(disk.instance) != 0 && m_states[{starter, disk.instance}] != "running") {
        find("the rescan script removes " + disk.name + ", which was away for a moment when it was started");
    }
    if (!m_kernel.unitOf(disk).id.empty()) {
        find("the rescan script removes " + disk.name + ", which is well");
    }
}

/** Whether a disk has answered as this LUN since the process has waited. */
bool Judge::hasAnswered(const Process& process, const std::string& lun) const
{
    return std::any_of(m_asked.begin(), m_asked.end(), [&](const auto& one) {
        const auto& [who, asked] = one;
        return who.first == process.pid && asked.id == lun && asked.pauses == process.count(Point::PAUSE);
    });
}

void Judge::handsOut(const Process& process, const std::string& path)
{
    const auto errand = m_errands.find(process.pid);
    if (errand == m_errands.end()) {
        return; // it was killed
    }
    const std::string name = path.substr(path.rfind('/') + 1);
    const Map* const map = m_multipath.find(name);
    meets(map != nullptr ? "maps handed out" : "disks handed out");
    if (map == nullptr && m_kernel.find(name) == nullptr && hasAnswered(process, errand->second.lun)) {
        meets("changes behind the last look"); // the path leads nowhere
        return;
    }
    if (map == nullptr || errand->second.manner == Manner::STEP_BY_STEP) {
        handsOut(process, errand->second.lun, path, name);
        return;
    }
    for (const auto& [disk, instance] : map->paths) {
        const Disk* const now = m_kernel.find(disk);
        if (now != nullptr && now->instance == instance && m_states[{process.pid, instance}] == "running") {
            handsOut(process, errand->second.lun, path, disk);
        }
    }
}

void Judge::handsOut(const Process& process, const std::string& lun, const std::string& path,
                     const std::string& name)
{
    const auto found = m_asked.find({process.pid, name});
    if (found == m_asked.end() || found->second.id != lun) {
        find(process.name + " gets " + path + " for LUN " + lun + ", which has not answered as it");
        return;
    }
    if (found->second.pauses != process.count(Point::PAUSE)) {
        find(process.name + " gets " + path + " for LUN " + lun + ", which has answered long ago");
    }
    const Disk* const disk = m_kernel.find(name);
    if (disk != nullptr && disk->instance == found->second.instance && found->second.changes == changes() &&
        m_kernel.isUp(disk->host) && m_kernel.unitOf(*disk).id != lun) {
        find(process.name + " gets " + path + " for LUN " + lun + ", which is another disk");
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

/** Tidy leaves a map, and so its dead paths, where one of them is well. */
bool Judge::isInMapThatStays(const Disk& disk) const
{
    const Map* const map = m_multipath.find(disk.map);
    return map != nullptr && std::any_of(map->paths.begin(), map->paths.end(), [&](const auto& path) {
               const Disk* const other = m_kernel.find(path.first);
               return other != nullptr && other->instance == path.second &&
                      m_kernel.unitOf(*other).id == other->known.id;
           });
}

void Judge::disksAtRest()
{
    for (const auto& [name, disk] : m_kernel.disks()) {
        if (!isOurs(disk) || !m_kernel.isUp(disk.host) || m_kernel.unitOf(disk).id == disk.known.id) {
            continue;
        }
        meets("dead disks at rest");
        const History& history = m_histories[disk.known.id];
        // Tidy keeps what the array shows, at another number say, that nobody has scanned yet.
        if (m_isTidy && !m_array.shows(disk.known.id) && !isInMapThatStays(disk)) {
            find("at rest " + name + " is a dead disk of LUN " + disk.known.id +
                 ", though disks were tidied");
        } else if (!m_isTidy && !history.hasSingleSteps && !history.isCutOff && !history.isTakenAway &&
                   !m_isScannedWithoutLock) {
            find("at rest " + name + " is a dead disk of LUN " + disk.known.id);
        }
    }
}

/** Where no call was cut off and no answer lost the host has one of each of its own objects. */
void Judge::arrayAtRest()
{
    if (m_isAnyKilled || m_isAnswerLost || m_isDetachCutOff || !m_fault.empty()) {
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
