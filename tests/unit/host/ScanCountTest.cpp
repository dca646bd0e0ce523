// What a scan starts and asks, by the number of disks.

#include "ScannerTest.h"

namespace {

class CountsOfAScan : public ScannerTest
{
protected:
    struct Counts
    {
        size_t processes;
        size_t inquiries;
    };

    /** Scans among so many disks, the last of them with this identity. */
    Counts scan(int disks, const char* last)
    {
        std::string listing;
        for (int i = 0; i < disks; ++i) {
            std::string name = "sda";
            name += static_cast<char>('a' + i / 26);
            name += static_cast<char>('a' + i % 26);
            const std::string identity = i + 1 == disks ? last : OTHER_WWN;
            seam.disks[name].pages = {page83(identity)};
            listing += byIdLine("scsi-3" + identity, name);
        }
        seam.prints(BY_ID, {listing});
        const Counts before = counts();
        EXPECT_EQ(scanner.scanLunAfterAttach(id).empty(), last != std::string(WWN));
        const Counts after = counts();
        return {after.processes - before.processes, after.inquiries - before.inquiries};
    }

private:
    Counts counts() const
    {
        return {commands().size() + platform.lines("popen: ").size(), platform.lines("inquiry: ").size()};
    }
};

} // namespace

TEST_F(CountsOfAScan, EachDiskIsAskedOnceAndNoMoreProcessesAreStartedForMoreOfThem)
{
    for (const char* last : {OTHER_WWN, WWN}) {
        const Counts few = scan(10, last);
        const Counts many = scan(600, last);
        EXPECT_EQ(few.inquiries, 10U);
        EXPECT_EQ(many.inquiries, 600U);
        EXPECT_EQ(many.processes, few.processes);
        EXPECT_EQ(few.processes, last == std::string(WWN) ? 6U : 5U);
    }
}
