// A scan of a host with thousands of disks: its lines at the default level.

#include "ScannerTest.h"

#include <cstring>

namespace {

constexpr int DISKS = 4096;
constexpr size_t OWN = 40; ///< lines of a scan whatever there is on the host

/** sda, sdb ... sdaa ... */
std::string diskName(int number)
{
    std::string letters;
    for (++number; number > 0; number = (number - 1) / 26) {
        letters.insert(letters.begin(), static_cast<char>('a' + (number - 1) % 26));
    }
    return "sd" + letters;
}

class LinesOfAScan : public ScannerTest
{
protected:
    /** Those of a disk each that every scan writes, and all the others. */
    void expectFew()
    {
        size_t ofDisks = 0;
        size_t others = 0;
        for (const std::string& line : platform.journal()) {
            const auto begins = [&](const char* text) { return line.compare(0, strlen(text), text) == 0; };
            if (begins("info: strLine [") || begins("info: strDiskPath [") ||
                begins("info: Target Lun ID [") || line == std::string("info: ") + LINE) {
                ++ofDisks;
            } else if (begins("info: ") || begins("warn: ") || begins("error: ")) {
                ++others;
            }
        }
        EXPECT_LE(ofDisks, 4 * DISKS + 2);
        EXPECT_LE(others, OWN);
    }
};

} // namespace

TEST_F(LinesOfAScan, AreFewBesideThoseOfEachDiskWhereDisksAreDead)
{
    std::string listing;
    for (int i = 0; i < DISKS; ++i) {
        const std::string name = diskName(i);
        listing += byIdLine("scsi-3" + std::string(OTHER_WWN), name);
        seam.disks[name].pages = {page83(OTHER_WWN)};
        seam.write("/sys/block/" + name + "/device/state", "offline\n");
    }
    seam.prints(BY_ID, {listing});
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
    expectFew();
    EXPECT_EQ(platform.lines("error: sda is offline").size(), 1U) << "some are named";
    EXPECT_EQ(platform.lines("error: 4086 more disks are not running").size(), 1U);
}

TEST_F(LinesOfAScan, AreFewWhereNamesAreUnusual)
{
    std::string listing;
    for (int i = 0; i < DISKS; ++i) {
        listing += byIdLine("scsi-3" + std::to_string(i), "disk " + std::to_string(i));
    }
    seam.prints(BY_ID, {listing});
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
    expectFew();
    EXPECT_EQ(platform.lines("warn: a link to a device of an unusual name").size(), 10U);
    EXPECT_EQ(platform.lines("warn: 4086 more links to devices of unusual names").size(), 1U);
}

TEST_F(LinesOfAScan, AreFewWhereAListingHoldsLinesThatAreNoText)
{
    std::string listing;
    for (int i = 0; i < DISKS; ++i) {
        listing += std::string("\x1b[31m") + std::to_string(i) + "\n";
    }
    seam.prints(BY_ID, {listing});
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
    expectFew();
    EXPECT_EQ(platform.lines("warn: a line of [").size(), 10U);
    EXPECT_EQ(platform.lines("warn: 4086 more lines of [").size(), 1U);
}
