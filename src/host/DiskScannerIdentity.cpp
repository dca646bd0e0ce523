// The identity of a device and its texts, by the operations that the scanner has for them.

#include "host/DiskScannerHandlerImpl.h"
#include "session/Log.h"

#include <ovra/bounds/bounds.h>
#include <ovra/disk/ReadIdentity.h>

#include <cstring>

using namespace ovra::tessel;

namespace {

bool isNull(const void* buffer, const char* text)
{
    if (buffer == nullptr) {
        COMMLOG(OS_LOG_INFO, "%s", text);
    }
    return buffer == nullptr;
}

/** Arithmetic in 32 bits that wraps. */
int plus(int value, int count, int step)
{
    return static_cast<int>(static_cast<unsigned int>(value) +
                            static_cast<unsigned int>(count) * static_cast<unsigned int>(step));
}

int writeHex(char* out, int outSize, const unsigned char* data, int count)
{
    for (; count > 0; --count, out += 2, outSize -= 2) {
        if (sprintf_s(out, static_cast<size_t>(outSize), "%02x", *data++) < 0) {
            return -1;
        }
    }
    return 0;
}

} // namespace

int CDiskScannerHandlerImpl::GetDiskPage(int fd, unsigned char page, unsigned char* buffer)
{
    return isNull(buffer, "aucBuffer is NULL! GetDiskPage") ? -1 : ovra::disk::inquire(fd, page, buffer);
}

int CDiskScannerHandlerImpl::GetDisk83Page(std::string& devicePath, std::string& wwnOut,
                                           std::string& lunIdOut)
{
    if (devicePath.empty()) {
        COMMLOG(OS_LOG_INFO, "strDevice is empty! GetDisk83Page");
        return -1;
    }
    const auto page = ovra::disk::readPage83(devicePath);
    const auto identity = page ? ovra::disk::parsePage83(*page) : std::nullopt;
    if (!identity) {
        return -1;
    }
    wwnOut = identity->wwn;
    lunIdOut = identity->lunId;
    return 0;
}

int CDiskScannerHandlerImpl::BinaryToAscii(char* hexOut, int hexOutSize, unsigned char* data, int offset,
                                           int count)
{
    if (isNull(data, "pucBuffer is NULL! BinaryToAscii") ||
        isNull(hexOut, "pszHexBuffer is NULL! BinaryToAscii") || hexOutSize - 1LL < 2LL * count) {
        return -1;
    }
    return writeHex(hexOut, hexOutSize, data + offset, count);
}

int CDiskScannerHandlerImpl::ConvertLUNIDtoAscii(unsigned char* asciiOut, int asciiOutSize,
                                                 unsigned char* data, int digits)
{
    if (isNull(asciiOut, "puszAsciiLunID is NULL! ConvertLUNIDtoAscii") ||
        isNull(data, "puszLunLunID is NULL! ConvertLUNIDtoAscii") || digits > asciiOutSize - 1LL) {
        return -1;
    }
    return writeHex(reinterpret_cast<char*>(asciiOut), asciiOutSize, data, digits / 2);
}

int CDiskScannerHandlerImpl::HextoDec(char* decOut, char* hexIn, int decOutSize)
{
    if (isNull(decOut, "pDecStr is NULL! HextoDec") || isNull(hexIn, "pHexStr is NULL! HextoDec")) {
        return -1;
    }
    int value = 0;
    const int length = static_cast<int>(strlen(hexIn));
    for (int i = 0; i < length; ++i) {
        const int position = length - i - 1;
        if (hexIn[i] >= '0' && hexIn[i] <= '9') {
            value = plus(value, hexIn[i] - '0', CalStep(position));
        } else if (HexEncode(hexIn[i], position, value) != 0) {
            return -1;
        }
    }
    if (decOutSize < 1) {
        return -1;
    }
    const auto size = static_cast<size_t>(decOutSize);
    return snprintf_s(decOut, size, size - 1, "%d", value) < 0 ? -1 : 0;
}

int CDiskScannerHandlerImpl::HexEncode(char digit, int position, int& value)
{
    static const char* const DIGITS = "aAbBcCdDeEfF";
    const char* const found = digit == '\0' ? nullptr : strchr(DIGITS, digit);
    if (found == nullptr) {
        return -1;
    }
    value = plus(value, 10 + static_cast<int>(found - DIGITS) / 2, CalStep(position));
    return 0;
}

int CDiskScannerHandlerImpl::CalStep(int position)
{
    const int wrapsToZero = 8;
    if (position <= 0) {
        return 1;
    }
    return position >= wrapsToZero ? 0 : 1 << (4 * position);
}
