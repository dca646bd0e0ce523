#ifndef TESSEL_DISKATTACH_H
#define TESSEL_DISKATTACH_H

#include <tessel/Handler.h>

#include <string>

/**
 * Makes a LUN or snapshot visible to one host, and takes it away again, on the array;
 * CDeviceManager::getHandler(DISKATTACH_HANDLER). The host's own side is CDiskScannerHandler's.
 *
 * A failure in the middle leaves the objects created so far on the array. Failures to add to a LUN group, a
 * host group or a mapping view are logged and not thrown: list the host's LUNs afterwards to be sure.
 */
class TESSEL_API CDiskAttachHandler : public CHandler
{
public:
    /**
     * Creates a LUN group, a host group and a mapping view with generated names and binds the LUN to the
     * initiator's host through them. An initiator without a host gets a new one.
     * @param lunID ID of the LUN; not empty.
     * @param iscsiInitiatorID initiator name (iqn...); the array must know it.
     * @param hostIP IP of the host record, used only when it is created.
     * @return 0 mapped, 1 already visible to the host: nothing was created.
     */
    virtual int attachLunToHost(const std::string& lunID, const std::string& iscsiInitiatorID,
                                const std::string& hostIP) = 0;

    /**
     * Removes the LUN from every LUN group that reaches the initiator's host. Every other host that sees such
     * a group loses the LUN too: those of the same host group, and those of other mapping views that hold the
     * LUN group. A LUN group that is left without LUNs and snapshots is taken out of the mapping view and
     * deleted, whoever made it. Host, host group and mapping view stay. Remove the host's devices before
     * (CDiskScannerHandler::scanLunBeforeDetach).
     * @param lunID ID of the LUN; not empty.
     * @param iscsiInitiatorID initiator name; "0" detaches the LUN from every host: it is removed from all
     * its LUN groups, and those left empty are deleted, out of whichever mapping views they were in.
     * @return 0, also when there was nothing to detach: the run log says so.
     */
    virtual int detachLunFromHost(const std::string& lunID, const std::string& iscsiInitiatorID) = 0;

    /**
     * attachLunToHost for a snapshot.
     * @param snapshotID ID of the snapshot; not empty.
     * @param iscsiInitiatorID initiator name (iqn...); the array must know it.
     * @param hostIP IP of the host record, used only when it is created.
     * @return 0 mapped, 1 already visible to the host: nothing was created.
     */
    virtual int attachSnapshotToHost(const std::string& snapshotID, const std::string& iscsiInitiatorID,
                                     const std::string& hostIP) = 0;

    /**
     * detachLunFromHost for a snapshot, with the same effect on other hosts and on groups.
     * @param snapshotID ID of the snapshot; not empty.
     * @param iscsiInitiatorID initiator name; "0" detaches the snapshot from every host.
     * @return 0, also when there was nothing to detach: the run log says so.
     */
    virtual int detachSnapshotFromHost(const std::string& snapshotID,
                                       const std::string& iscsiInitiatorID) = 0;
};

#endif
