#include "export/KernelTarget.h"

#include "export/NumberedLinks.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace fs = std::filesystem;

namespace arraysim {
namespace {

/** Kept with a store in the kernel, to know it again. */
std::string mark(const StoreFacts& store)
{
    return store.wwn + " " + std::to_string(fs::file_size(store.file)) + " " + store.file.string();
}

} // namespace

KernelTarget::KernelTarget(ConfigFs& config, const std::string& iqn, std::string prefix)
    : m_config(config), m_prefix(std::move(prefix)), m_stores(config.root() / "core" / "fileio_0"),
      m_group(config.root() / "iscsi" / iqn / "tpgt_1")
{
    if (!fs::is_directory(m_group)) {
        throw std::runtime_error("there is no target " + iqn + " in " + config.root().string() +
                                 ": make it first, and run as root");
    }
    m_lock = ::open(m_group.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (::flock(m_lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        ::close(m_lock);
        throw std::runtime_error("the target " + iqn + " is in use by another array");
    }
    if (!fs::exists(m_stores)) {
        m_config.makeDirectory(m_stores);
    }
}

KernelTarget::~KernelTarget()
{
    ::close(m_lock);
}

std::vector<std::string>
KernelTarget::reconcile(const std::map<std::string, std::pair<StoreFacts, std::set<std::string>>>& wanted)
{
    std::vector<std::string> failures;
    for (const auto& name : familyStores()) {
        try {
            const auto found = wanted.find(name);
            if (found == wanted.end() ||
                m_config.read(storeDir(name) / "udev_path") != mark(found->second.first)) {
                removeStore(name);
                continue;
            }
            for (const auto& initiator : seenBy(name)) {
                if (found->second.second.count(initiator) == 0) {
                    removeWithLinks(m_config, mapped(name, initiator));
                }
            }
        } catch (const std::exception& failure) {
            failures.push_back(name + ": " + failure.what());
        }
    }
    return failures;
}

void KernelTarget::map(const StoreFacts& store, const std::string& initiator)
{
    provideStore(store);
    provideAcl(initiator);
    if (!mapped(store.name, initiator).empty()) {
        return;
    }
    fs::path exportedAt = exported(store.name);
    if (exportedAt.empty()) {
        exportedAt = makeNextNumber(m_config, m_group / "lun", 0);
        fs::create_directory_symlink(storeDir(store.name), exportedAt / "store");
    }
    const fs::path number = makeNextNumber(m_config, m_group / "acls" / initiator, 1);
    fs::create_directory_symlink(exportedAt, number / "export");
    m_config.write(number / "write_protect", "0");
}

void KernelTarget::unmap(const std::string& storeName, const std::string& initiator)
{
    if (const fs::path number = mapped(storeName, initiator); !number.empty()) {
        removeWithLinks(m_config, number);
    }
    if (!exported(storeName).empty() && seenBy(storeName).empty()) {
        removeStore(storeName);
    }
}

void KernelTarget::provideStore(const StoreFacts& store)
{
    const fs::path dir = storeDir(store.name);
    if (fs::exists(dir)) {
        return;
    }
    m_config.makeDirectory(dir);
    try {
        m_config.write(dir / "control", "fd_dev_name=" + store.file.string() +
                                            ",fd_dev_size=" + std::to_string(fs::file_size(store.file)));
        // Both can be set only before the store is exported.
        m_config.write(dir / "wwn" / "company_id", "0x" + store.wwn.substr(1, 6));
        m_config.write(dir / "wwn" / "vpd_unit_serial", store.wwn.substr(7));
        m_config.write(dir / "udev_path", mark(store));
        m_config.write(dir / "enable", "1");
    } catch (const std::exception&) {
        m_config.removeDirectory(dir); // half a store would be taken for a whole one
        throw;
    }
}

void KernelTarget::provideAcl(const std::string& initiator)
{
    const fs::path acl = m_group / "acls" / initiator;
    if (fs::exists(acl)) {
        return;
    }
    m_config.makeDirectory(acl);
    // Bus rescans find nothing on a target that shows no LUN 0.
    if (fs::exists(m_group / "lun" / "lun_0")) {
        m_config.makeDirectory(acl / "lun_0");
        fs::create_directory_symlink(m_group / "lun" / "lun_0", acl / "lun_0" / "export");
    }
}

fs::path KernelTarget::exported(const std::string& storeName) const
{
    return numberedLink(m_group / "lun", storeDir(storeName));
}

fs::path KernelTarget::mapped(const std::string& storeName, const std::string& initiator) const
{
    const fs::path exportedAt = exported(storeName);
    return exportedAt.empty() ? exportedAt : numberedLink(m_group / "acls" / initiator, exportedAt);
}

std::vector<std::string> KernelTarget::seenBy(const std::string& storeName) const
{
    std::vector<std::string> initiators;
    for (const auto& acl : fs::directory_iterator(m_group / "acls")) {
        if (acl.is_directory() && !mapped(storeName, acl.path().filename()).empty()) {
            initiators.push_back(acl.path().filename());
        }
    }
    return initiators;
}

std::set<std::string> KernelTarget::familyStores() const
{
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_stores)) {
        const std::string name = entry.path().filename();
        const bool isOurs = name.rfind(m_prefix, 0) == 0;
        if (isOurs || (name.rfind(FAMILY, 0) == 0 && !exported(name).empty())) {
            names.insert(name);
        }
    }
    return names;
}

void KernelTarget::removeStore(const std::string& storeName)
{
    for (const auto& initiator : seenBy(storeName)) {
        removeWithLinks(m_config, mapped(storeName, initiator));
    }
    if (const fs::path exportedAt = exported(storeName); !exportedAt.empty()) {
        removeWithLinks(m_config, exportedAt);
    }
    m_config.removeDirectory(storeDir(storeName));
}

} // namespace arraysim
