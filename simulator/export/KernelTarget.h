#ifndef SIMULATOR_EXPORT_KERNELTARGET_H
#define SIMULATOR_EXPORT_KERNELTARGET_H

#include <filesystem>
#include <string>

namespace arraysim {

/** What a store shows of itself and where its data is. */
struct StoreFacts
{
    std::string name;
    std::filesystem::path file;
    std::string wwn; ///< 6, the company ID, and the 25 digits of the serial
};

/**
 * The kernel's own iSCSI target, worked through configfs: stores, and who sees which under what number.
 * Throws std::runtime_error, with what to do where that is known.
 */
class KernelTarget
{
public:
    /** The target must exist; what it exports beside our stores is left alone. */
    explicit KernelTarget(const std::string& iqn);

    /** Lets the initiator see the store, under the lowest free number from 1 on; makes what is missing. */
    void map(const StoreFacts& store, const std::string& initiator);
    /** The reverse; the store goes with the last initiator that sees it. */
    void unmap(const std::string& storeName, const std::string& initiator);

private:
    using Path = std::filesystem::path;

    Path storeDir(const std::string& name) const { return m_stores / name; }
    void provideStore(const StoreFacts& store);
    void provideAcl(const std::string& initiator);
    /** The directory under which the target exports a store; empty where it does not. */
    Path exported(const std::string& storeName) const;
    Path mapped(const std::string& storeName, const std::string& initiator) const;
    bool isMapped(const Path& exportedAt) const;

    Path m_stores;
    Path m_group; ///< the target's portal group
};

} // namespace arraysim

#endif
