#ifndef HOST_DISKSCANNERHANDLERIMPL_H
#define HOST_DISKSCANNERHANDLERIMPL_H

#include "host/Korvex.h"
#include "host/KxRescanLock.h"
#include "host/KxRescanState.h"
#include "session/HandlerOf.h"

#include <tessel/DiskScanner.h>

#include <string>

extern int g_scannerInitialised; ///< 1 once the one-time set-up of this process is done

class CDiskScannerHandlerImpl : public ovra::tessel::HandlerOf<CDiskScannerHandler>
{
public:
    CDiskScannerHandlerImpl() = default;
    /** Makes the rescan lock and looks for the Korvex product, until that has succeeded once. */
    explicit CDiskScannerHandlerImpl(CDeviceManagerImpl* deviceManager);

    std::string scanLunAfterAttach(std::string& lunID) override;
    std::string scanSnapshotAfterAttach(std::string& snapshotID) override;
    void scanLunBeforeDetach(std::string& lunID) override;
    void scanSnapshotBeforeDetach(std::string& snapshotID) override;

    /** Finds the device with this WWN without a rescan of the host; objectID is only logged. */
    virtual std::string GetDiskPath(std::string& objectID, std::string& wwn, MOType type);

    /** The quick search among the device identifiers that hold the WWN; only with the Korvex product. */
    std::string GetDiskPathForWWN(const std::string& wwn);

    /** Waits for another thread's scan and looks for the snapshot's device. docs/oddities.md#preare */
    std::string ScanSnapshotPreare(std::string snapshotID, const std::string& wwn);

    // SCSI identity. These return 0, or -1 with the outputs as they were.

    /** Reads a device's WWN and the array's LUN ID (decimal) out of its INQUIRY page 0x83. */
    int GetDisk83Page(std::string& devicePath, std::string& wwnOut, std::string& lunIdOut);
    /** One INQUIRY for a vital product data page; the buffer holds 256 bytes. */
    int GetDiskPage(int fd, unsigned char page, unsigned char* buffer);
    /** Writes count bytes from data + offset as lowercase hexadecimal. */
    int BinaryToAscii(char* hexOut, int hexOutSize, unsigned char* data, int offset, int count);
    /** Writes digits / 2 bytes of data as lowercase hexadecimal. */
    int ConvertLUNIDtoAscii(unsigned char* asciiOut, int asciiOutSize, unsigned char* data, int digits);
    /** Converts hexadecimal text to decimal; the low 32 bits as a signed number. */
    int HextoDec(char* decOut, char* hexIn, int decOutSize);
    /** Adds to value what the letter digit is worth at a position, counted from 0 at the right. */
    int HexEncode(char digit, int position, int& value);
    /** 16 to the power of position in 32 bits; 1 for a position of 0 or less. */
    int CalStep(int position);

private:
    KxRescanLock m_rescanLock;
};

#endif
