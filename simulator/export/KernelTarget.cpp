#include "export/KernelTarget.h"

#include <fstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace arraysim {
namespace {

const fs::path ROOT = "/sys/kernel/config/target";

void writeTo(const fs::path& attribute, const std::string& value)
{
    std::ofstream file(attribute);
    if (!(file << value << std::flush)) {
        throw std::runtime_error("the kernel does not take " + value + " in " + attribute.string());
    }
}

/** The directory prefix + the lowest number from first on that does not exist, made. */
fs::path makeNext(const fs::path& in, const std::string& prefix, int first)
{
    for (int number = first;; ++number) {
        fs::path next = in / (prefix + std::to_string(number));
        if (!fs::exists(next)) {
            fs::create_directory(next);
            return next;
        }
    }
}

/** Whether a directory of a target links to another one. */
bool linksTo(const fs::path& from, const fs::path& to)
{
    for (const auto& entry : fs::directory_iterator(from)) {
        std::error_code broken;
        if (entry.is_symlink() && fs::equivalent(entry.path(), to, broken)) {
            return true;
        }
    }
    return false;
}

/** Directories of configfs go with rmdir alone; their links first. */
void removeLinked(const fs::path& directory)
{
    for (const auto& entry : fs::directory_iterator(directory)) {
        if (entry.is_symlink()) {
            fs::remove(entry.path());
        }
    }
    fs::remove(directory);
}

bool isNumbered(const fs::directory_entry& entry)
{
    return entry.is_directory() && entry.path().filename().string().rfind("lun_", 0) == 0;
}

} // namespace

KernelTarget::KernelTarget(const std::string& iqn)
    : m_stores(ROOT / "core" / "fileio_0"), m_group(ROOT / "iscsi" / iqn / "tpgt_1")
{
    if (!fs::is_directory(m_group)) {
        throw std::runtime_error("there is no target " + iqn + " in " + ROOT.string() +
                                 ": make it first, and run as root");
    }
    fs::create_directories(m_stores);
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
        exportedAt = makeNext(m_group / "lun", "lun_", 0);
        fs::create_directory_symlink(storeDir(store.name), exportedAt / "store");
    }
    const fs::path number = makeNext(m_group / "acls" / initiator, "lun_", 1);
    fs::create_directory_symlink(exportedAt, number / "export");
    writeTo(number / "write_protect", "0");
}

void KernelTarget::unmap(const std::string& storeName, const std::string& initiator)
{
    if (const fs::path number = mapped(storeName, initiator); !number.empty()) {
        removeLinked(number);
    }
    const fs::path exportedAt = exported(storeName);
    if (!exportedAt.empty() && !isMapped(exportedAt)) {
        removeLinked(exportedAt);
        fs::remove(storeDir(storeName));
    }
}

void KernelTarget::provideStore(const StoreFacts& store)
{
    const fs::path dir = storeDir(store.name);
    if (fs::exists(dir)) {
        return;
    }
    fs::create_directory(dir);
    writeTo(dir / "control", "fd_dev_name=" + store.file.string() +
                                 ",fd_dev_size=" + std::to_string(fs::file_size(store.file)));
    // Both can be set only before the store is exported.
    writeTo(dir / "wwn" / "company_id", "0x" + store.wwn.substr(1, 6));
    writeTo(dir / "wwn" / "vpd_unit_serial", store.wwn.substr(7));
    writeTo(dir / "enable", "1");
}

void KernelTarget::provideAcl(const std::string& initiator)
{
    const fs::path acl = m_group / "acls" / initiator;
    if (fs::exists(acl)) {
        return;
    }
    fs::create_directory(acl);
    // Bus rescans find nothing on a target that shows no LUN 0.
    if (fs::exists(m_group / "lun" / "lun_0")) {
        fs::create_directory(acl / "lun_0");
        fs::create_directory_symlink(m_group / "lun" / "lun_0", acl / "lun_0" / "export");
    }
}

fs::path KernelTarget::exported(const std::string& storeName) const
{
    for (const auto& entry : fs::directory_iterator(m_group / "lun")) {
        if (isNumbered(entry) && linksTo(entry.path(), storeDir(storeName))) {
            return entry.path();
        }
    }
    return {};
}

fs::path KernelTarget::mapped(const std::string& storeName, const std::string& initiator) const
{
    const fs::path exportedAt = exported(storeName);
    const fs::path acl = m_group / "acls" / initiator;
    if (exportedAt.empty() || !fs::exists(acl)) {
        return {};
    }
    for (const auto& entry : fs::directory_iterator(acl)) {
        if (isNumbered(entry) && linksTo(entry.path(), exportedAt)) {
            return entry.path();
        }
    }
    return {};
}

bool KernelTarget::isMapped(const fs::path& exportedAt) const
{
    for (const auto& acl : fs::directory_iterator(m_group / "acls")) {
        for (const auto& entry : fs::directory_iterator(acl.path())) {
            if (isNumbered(entry) && linksTo(entry.path(), exportedAt)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace arraysim
