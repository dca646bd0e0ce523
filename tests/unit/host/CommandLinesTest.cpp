#include "ScannerTest.h"

#include "host/CommandLines.h"
#include "host/Interruption.h"

#include <csignal>

using namespace ovra::tessel;

using testing::ElementsAre;

class ListingLines : public ScannerTest
{
protected:
    std::vector<std::string> of(const std::string& output)
    {
        seam.prints("list", {output});
        std::vector<std::string> lines;
        CommandLines listing("list");
        for (std::string line; listing.next(line);) {
            lines.push_back(line);
        }
        return lines;
    }
};

TEST_F(ListingLines, ComeWithoutTheirNewlines)
{
    EXPECT_THAT(of("one\n\ntwo\n"), ElementsAre("one", "", "two"));
    EXPECT_THAT(of(""), ElementsAre());
}

TEST_F(ListingLines, OfUpTo1022CharactersAreWhole)
{
    const std::string longest(1022, 'x');
    EXPECT_THAT(of(longest + "\nnext\n"), ElementsAre(longest, "next"));
}

TEST_F(ListingLines, ThatAreTooLongAreEmptyWithAllTheirPieces)
{
    for (const size_t size : {1023u, 1024u, 2046u, 2047u, 5000u}) {
        EXPECT_THAT(of("one\n" + std::string(size, 'x') + "\ntwo\n"), ElementsAre("one", "", "two")) << size;
    }
    // The second piece of the line must not be taken for a line of its own.
    EXPECT_THAT(of(std::string(1023, 'x') + "/dev/sda \n/dev/sdb \n"), ElementsAre("", "/dev/sdb "));
}

TEST_F(ListingLines, WithoutANewlineCountWhenTheCommandHasSucceeded)
{
    EXPECT_THAT(of("one\n/dev/sda"), ElementsAre("one", "/dev/sda"));
    EXPECT_THAT(of(std::string(1022, 'x')), ElementsAre(std::string(1022, 'x')));
    EXPECT_THAT(of(std::string(1023, 'x')), ElementsAre(""));
    EXPECT_THAT(of(std::string("a\0b", 3)), ElementsAre(""));
}

TEST_F(ListingLines, ThatTheCommandDidNotEndAreEmpty)
{
    for (const int status : {-1, 1 << 8, SIGKILL, SIGPIPE}) {
        seam.ends("list", {status});
        EXPECT_THAT(of("one\n/dev/sda"), ElementsAre("one", "")) << status;
    }
}

TEST_F(ListingLines, ThatAreLeftOutAreTold)
{
    of(std::string(2000, 'x') + "\n\x1b[31msda\nnext\n\n");
    EXPECT_EQ(platform.lines("warn: a line of [list] is not looked at").size(), 2u);
}

TEST_F(ListingLines, OfACommandThatIsEndedFromTheKeyboardEndTheStepsOfAScan)
{
    for (const int signal : {SIGINT, SIGQUIT}) {
        for (const int status : {signal, (128 + signal) << 8}) {
            seam.ends("list", {status});
            EXPECT_THROW(of("one\n"), Interruption);
            seam.ends("command", {status});
            EXPECT_THROW(runCommand("command"), Interruption);
        }
    }
    for (const int status : {-1, 0, 1 << 8, SIGTERM, SIGKILL, (128 + SIGTERM) << 8}) {
        seam.ends("command", {status});
        EXPECT_EQ(runCommand("command"), status);
    }
}

TEST_F(ListingLines, WithBytesThatNoTextHasAreEmpty)
{
    EXPECT_THAT(of(std::string("a\0b\nnext\n", 9)), ElementsAre("", "next"));
    EXPECT_THAT(of(std::string("\0\nnext\n", 7)), ElementsAre("", "next"));
    EXPECT_THAT(of("\x1b[31msda\nnext\n"), ElementsAre("", "next"));
    EXPECT_THAT(of("sda\r\nnext\n"), ElementsAre("", "next"));
}

TEST_F(ListingLines, MayHoldTheLettersOfAnyLanguageAndTabs)
{
    EXPECT_THAT(of("1 M\xc3\xa4r 10:20\tsda\n"), ElementsAre("1 M\xc3\xa4r 10:20\tsda"));
}

TEST_F(ListingLines, EndTheCommand)
{
    of("one\n");
    EXPECT_THAT(platform.journal(), ElementsAre("popen: list", "pclose"));
}

TEST_F(ListingLines, OfACommandThatCannotBeStartedAreNone)
{
    seam.cannotStart("list");
    {
        const CommandLines listing("list");
        EXPECT_FALSE(listing.started());
    }
    EXPECT_THAT(platform.journal(), ElementsAre("popen: list"));
}
