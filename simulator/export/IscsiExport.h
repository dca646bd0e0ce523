#ifndef SIMULATOR_EXPORT_ISCSIEXPORT_H
#define SIMULATOR_EXPORT_ISCSIEXPORT_H

#include "export/DiskFiles.h"
#include "export/KernelTarget.h"
#include "model/Exposure.h"
#include "watch/Journal.h"

namespace arraysim {

/**
 * Real disks behind the array: what mapping views expose to iSCSI initiators is mapped for them in the
 * kernel's target, from files in a directory. A snapshot holds what its LUN held when it was made. What
 * the kernel refuses is told in the log; the array's own state goes on without it. The work of an operation
 * is done once the world's lock is given back, before the operation is answered.
 */
class IscsiExport : public ExposureObserver, public LinkObserver
{
public:
    /** Puts the target into the state that the world asks for. */
    IscsiExport(World& world, Journal& journal, ConfigFs& config, const std::string& iqn,
                const DiskFiles::Path& files);
    ~IscsiExport() override;

    void exposureChanged(const ObjectKey& lunOrSnapshot, const ObjectKey& initiator, bool appeared) override;

    // Files come and go with the objects: a snapshot is linked to its LUN, a LUN to its pool, once.
    void linkChanges(const ObjectKey& owner, const ObjectKey& member) override;
    void committed() override;
    void rolledBack() override { m_touched.clear(); }

private:
    std::string storeName(const ObjectKey& disk) const { return m_prefix + diskName(disk); }
    void reconcile();
    void cameOrWent(const ObjectKey& disk);
    /** Lets the target show a disk to an initiator exactly when the world does. */
    void settle(const ObjectKey& disk, const std::string& initiator);
    /** What the world wants of the disk now; nothing where the initiator is not to see it. */
    std::optional<StoreFacts> wanted(const ObjectKey& disk, const std::string& initiator);
    StoreFacts provided(const ObjectKey& disk) const;
    void tryTo(const std::string& what, const std::function<void()>& action);

    World& m_world;
    Journal& m_journal;
    const std::string m_prefix; ///< of the names of stores: the array's device ID
    DiskFiles m_files;
    std::mutex m_turn; ///< one change of the target at a time; taken before the world's lock
    KernelTarget m_target;
    std::set<ObjectKey> m_touched;
    const ExposureWatch m_watch;
};

} // namespace arraysim

#endif
