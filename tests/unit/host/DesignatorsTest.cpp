// What a disk calls itself in its page 0x83, all of it: by this a disk is known under names of another.

#include <ovra/disk/Page83.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ovra::disk::unitDesignators;
using testing::ElementsAre;

namespace {

constexpr char BINARY = 1;
constexpr char TEXT = 2;
constexpr char OF_THE_PORT = 0x10;

std::string designator(char codes, char association, const std::string& value)
{
    return std::string{codes, association, '\0', static_cast<char>(value.size())} + value;
}

std::string page(const std::string& designators, char code = '\x83')
{
    return std::string{'\0', code, static_cast<char>(designators.size() >> 8U),
                       static_cast<char>(designators.size())} +
           designators;
}

const std::string NAA = std::string("\x60\x01\x40\x5f", 4);

TEST(Designators, OfTheUnitAreToldAndNoneOfItsPort)
{
    EXPECT_THAT(
        unitDesignators(page(designator(BINARY, 3, NAA) + designator(BINARY, OF_THE_PORT | 4, "port") +
                             designator(TEXT, 8, "naa.6001405F"))),
        ElementsAre("6001405f", "naa.6001405f"));
}

TEST(Designators, OfNoLengthTellNothingAndHideNoneBehindThem)
{
    EXPECT_THAT(unitDesignators(page(designator(BINARY, 3, "") + designator(BINARY, 3, NAA))),
                ElementsAre("6001405f"));
}

TEST(Designators, MayTakeMoreThanAByteCounts)
{
    EXPECT_THAT(
        unitDesignators(page(designator(TEXT, 1, std::string(250, 'a')) + designator(BINARY, 3, NAA))),
        ElementsAre(std::string(250, 'a'), "6001405f"));
}

TEST(Designators, ThatArePartlyThereAreNotTold)
{
    const std::string whole = page(designator(BINARY, 3, NAA) + designator(BINARY, 3, NAA));
    for (size_t missing = 1; missing <= 8; ++missing) { // the second one and its header
        EXPECT_THAT(unitDesignators(whole.substr(0, whole.size() - missing)), ElementsAre("6001405f"))
            << missing;
    }
    std::string shorter = whole; // the page says that it ends within the second one
    shorter[3] = 15;
    EXPECT_THAT(unitDesignators(shorter), ElementsAre("6001405f"));
}

TEST(Designators, AreOfNoOtherPage)
{
    EXPECT_THAT(unitDesignators(page(designator(BINARY, 3, NAA), '\x80')), ElementsAre());
    EXPECT_THAT(unitDesignators(""), ElementsAre());
    EXPECT_THAT(unitDesignators(std::string("\0\x83", 2)), ElementsAre());
}

} // namespace
