// Removes the SCSI devices of a LUN or snapshot that the array is about to take away.

#include "host/CommandLines.h"
#include "host/DeviceRemoval.h"
#include "host/LsscsiLine.h"
#include "host/ScannedObject.h"

#include <set>

using namespace ovra::tessel;

namespace {

const int PASSES = 5;

class Removal
{
public:
    Removal(CDiskScannerHandlerImpl& scanner, const std::string& wwn, const std::string& lunId)
        : m_scanner(scanner), m_wwn(wwn), m_lunId(lunId)
    {
    }

    /** Removes every device of the object; false when the devices could not be listed. */
    bool run() const
    {
        bool again = true;
        for (int pass = 0; pass < PASSES && again; ++pass) {
            std::set<std::string> devices;
            if (!list(devices)) {
                return false;
            }
            again = false;
            for (const std::string& device : devices) {
                again = removeIfWanted(device) || again;
            }
        }
        return true;
    }

private:
    static bool list(std::set<std::string>& devices)
    {
        CommandLines listing(LSSCSI);
        if (!listing.started()) {
            return false;
        }
        for (std::string line; listing.next(line);) {
            if (const std::optional<std::string> device = diskOfLine(line)) {
                devices.insert(*device);
            }
        }
        return true;
    }

    bool removeIfWanted(const std::string& device) const
    {
        const auto isWanted = [this](const DiskIdentity& identity) {
            return identity.wwn == m_wwn && identity.lunId == m_lunId;
        };
        if (!isWanted(DiskIdentity(m_scanner, device)) ||
            !isReadyForRemoval(m_scanner, device, device, isWanted)) {
            return false;
        }
        const std::string command = "echo 1 > /sys/block/" + lastName(device) + "/device/delete";
        COMMLOG(OS_LOG_INFO, "delete disk cmd[%s]", command.c_str());
        runCommand(command);
        return true;
    }

    CDiskScannerHandlerImpl& m_scanner;
    const std::string& m_wwn;
    const std::string& m_lunId;
};

template <class Object>
void removeDevices(const char* operation, CDiskScannerHandlerImpl& scanner, CDeviceManagerImpl* deviceManager,
                   const std::string& id)
{
    Operation::run(Frame(operation).recordedLast(), deviceManager, [&](Operation& op) {
        const auto object = readScanned<Object>(op, deviceManager, id);
        if (!object) {
            return;
        }
        if (g_korvexInstalled) {
            COMMLOG(OS_LOG_INFO, "Korvex installed,No need to delete device");
        } else if (isUsableWwn(object->WWN) && !Removal(scanner, object->WWN, id).run()) {
            op.end(RESULT_BAD_ARGUMENT);
            COMMLOG(OS_LOG_ERROR, "lsscsi command is not enable!");
        }
    });
}

} // namespace

void CDiskScannerHandlerImpl::scanLunBeforeDetach(std::string& lunID)
{
    removeDevices<ScannedLun>("scanLunBeforeDetach", *this, m_pDeviceManager, lunID);
}

void CDiskScannerHandlerImpl::scanSnapshotBeforeDetach(std::string& snapshotID)
{
    removeDevices<ScannedSnapshot>("scanSnapshotBeforeDetach", *this, m_pDeviceManager, snapshotID);
}
