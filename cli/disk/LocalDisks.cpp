#include "disk/LocalDisks.h"

#include "disk/HostFiles.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

namespace tesselctl {
namespace {

const size_t headerSize = 4;
const unsigned binaryCodes = 1;

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string hex(const std::string& bytes)
{
    std::string text;
    for (const char byte : bytes) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned char>(byte));
        text += digits.data();
    }
    return text;
}

/// "naa.6001..." as the kernel spells it, without the name of its kind.
std::string kernelIdentity(const std::string& disk)
{
    std::string text = readFile(hostPath("/sys/block/" + disk + "/device/wwid"));
    text.erase(text.find_last_not_of(" \n") + 1);
    const size_t dot = text.find('.');
    return lower(dot == std::string::npos ? text : text.substr(dot + 1));
}

} // namespace

std::vector<std::string> unitIdentities(const std::string& page)
{
    const auto byte = [&](size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(page[i])); };
    std::vector<std::string> identities;
    if (page.size() < headerSize || byte(1) != 0x83) {
        return identities;
    }
    const size_t end = std::min(page.size(), headerSize + byte(2) * 256 + byte(3));
    for (size_t at = headerSize; at + headerSize <= end;) {
        const size_t length = byte(at + 3);
        const bool ofUnit = (byte(at + 1) & 0x30U) == 0;
        if (at + headerSize + length > end) {
            break;
        }
        if (ofUnit && length > 0) {
            const std::string value = page.substr(at + headerSize, length);
            identities.push_back((byte(at) & 0x0FU) == binaryCodes ? hex(value) : lower(value));
        }
        at += headerSize + length;
    }
    return identities;
}

std::vector<std::string> disksWithWwn(const std::string& wwn)
{
    std::vector<std::string> disks;
    if (wwn.empty()) {
        return disks;
    }
    const std::string wanted = lower(wwn);
    for (const auto& disk : namesIn(hostPath("/sys/block"))) {
        auto identities = unitIdentities(readFile(hostPath("/sys/block/" + disk + "/device/vpd_pg83")));
        identities.push_back(kernelIdentity(disk));
        if (std::find(identities.begin(), identities.end(), wanted) != identities.end()) {
            disks.push_back(disk);
        }
    }
    return disks;
}

} // namespace tesselctl
