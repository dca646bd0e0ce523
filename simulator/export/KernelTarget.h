#ifndef SIMULATOR_EXPORT_KERNELTARGET_H
#define SIMULATOR_EXPORT_KERNELTARGET_H

#include "export/ConfigFs.h"

#include <map>
#include <set>
#include <utility>
#include <vector>

namespace arraysim {

/** What a store shows of itself and where its data is. */
struct StoreFacts
{
    std::string name; ///< begins with the array's own prefix
    std::filesystem::path file;
    std::string wwn; ///< 6, the company ID, and the 25 digits of the serial
};

/**
 * The kernel's own iSCSI target, worked through configfs: stores, and who sees which under what number.
 * Throws std::runtime_error, with what to do where that is known. For one thread at a time.
 */
class KernelTarget
{
public:
    /** What all stores of arrays of this kind begin with. */
    static constexpr const char* FAMILY = "tessel_";

    /**
     * The target must exist, and is this object's alone among the arrays of this kind; what it exports beside
     * stores of theirs is left alone. prefix: what the names of this array's stores begin with.
     */
    KernelTarget(ConfigFs& config, const std::string& iqn, std::string prefix);
    ~KernelTarget();
    KernelTarget(const KernelTarget&) = delete;
    KernelTarget& operator=(const KernelTarget&) = delete;

    /**
     * Takes away what an array that was here before has left on the target: stores of another array, stores
     * and mappings that are not wanted, stores whose data lies elsewhere now. wanted: the stores that may
     * stay, with the initiators that may go on seeing them.
     * @return what could not be taken away, each with the reason
     */
    std::vector<std::string>
    reconcile(const std::map<std::string, std::pair<StoreFacts, std::set<std::string>>>& wanted);

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
    std::vector<std::string> seenBy(const std::string& storeName) const;
    /** The stores that the target exports, and those of this array that it does not. */
    std::set<std::string> familyStores() const;
    void removeStore(const std::string& storeName);

    ConfigFs& m_config;
    const std::string m_prefix;
    const Path m_stores;
    const Path m_group; ///< the target's portal group
    int m_lock = -1;
};

} // namespace arraysim

#endif
