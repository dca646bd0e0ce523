#ifndef SIMULATOR_EXPORT_ISCSIEXPORT_H
#define SIMULATOR_EXPORT_ISCSIEXPORT_H

#include "export/KernelTarget.h"
#include "model/Exposure.h"
#include "watch/Journal.h"

namespace arraysim {

/**
 * Real disks behind the array: what mapping views expose to iSCSI initiators is mapped for them in the
 * kernel's target, from files in a directory. A snapshot holds what its LUN held when it was made. What
 * the kernel refuses is told in the log; the array's own state goes on without it.
 */
class IscsiExport : public ExposureObserver, public LinkObserver
{
public:
    /** Maps what is exposed already. */
    IscsiExport(World& world, Journal& journal, const std::string& iqn, std::filesystem::path files);
    ~IscsiExport() override;

    void exposureChanged(const ObjectKey& lunOrSnapshot, const ObjectKey& initiator, bool appeared) override;

    // Files come and go with the objects: a snapshot is linked to its LUN, a LUN to its pool, once.
    void linkChanges(const ObjectKey& owner, const ObjectKey& member) override;
    void committed() override;
    void rolledBack() override { m_touched.clear(); }

private:
    std::filesystem::path fileOf(const ObjectKey& object) const;
    StoreFacts provided(const ObjectKey& object) const;
    void tryTo(const std::string& what, const std::function<void()>& action);

    World& m_world;
    Journal& m_journal;
    KernelTarget m_target;
    std::filesystem::path m_files;
    std::set<ObjectKey> m_touched;
    const ExposureWatch m_watch;
};

} // namespace arraysim

#endif
