#include "text/Display.h"
#include "text/Words.h"

#include <gtest/gtest.h>

#include <clocale>

namespace {

using namespace tesselctl;

/** The locale of a terminal for the time of a test. */
class Locale
{
public:
    explicit Locale(const char* name) { m_isThere = std::setlocale(LC_CTYPE, name) != nullptr; }
    ~Locale() { std::setlocale(LC_CTYPE, "C"); }
    Locale(const Locale&) = delete;
    Locale& operator=(const Locale&) = delete;
    bool isThere() const { return m_isThere; }

private:
    bool m_isThere = false;
};

TEST(Text, thatSteersATerminalIsEscaped)
{
    EXPECT_EQ(printable("plain \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x92\xBE"),
              "plain \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x92\xBE");
    EXPECT_EQ(printable("a\x1B[2Jb\n\t\x7F"), "a\\x1B[2Jb\\x0A\\x09\\x7F");
    EXPECT_EQ(printable(std::string("a\0b", 3)), "a\\x00b");
    EXPECT_EQ(printable("\xC2\x9B"), "\\x9B");                                 // CSI in one character
    EXPECT_EQ(printable("\xE2\x80\xAE"), "\\u{202E}");                         // the other way round
    EXPECT_EQ(printable("\xFF\xC3"), "\\xFF\\xC3");                            // no UTF-8, and half of it
    EXPECT_EQ(printable("\xC0\x80\xED\xA0\x80"), "\\xC0\\x80\\xED\\xA0\\x80"); // too long, and half of a pair
}

TEST(Text, thatIsNoUtf8IsReplacedAndNothingElse)
{
    EXPECT_EQ(validUtf8("a\xC3\xA4\x1B\xE2\x80\xAE"), "a\xC3\xA4\x1B\xE2\x80\xAE");
    EXPECT_EQ(validUtf8("a\xFFz"), "a\\xFFz");
    EXPECT_EQ(validUtf8(""), "");
}

TEST(Text, ofJsonHasEscapesForWhatSteers)
{
    EXPECT_EQ(plainJson("{\"a\": \"\xC3\xA4\"}\n"), "{\"a\": \"\xC3\xA4\"}\n");
    EXPECT_EQ(plainJson("\x7F"), "\\u007F");
    EXPECT_EQ(plainJson("\xC2\x9B\xE2\x80\xAE"), "\\u009B\\u202E");
}

TEST(Text, withoutUtf8IsAscii)
{
    EXPECT_EQ(inLocale("a\x7F\xC3\xA4\xF0\x9F\x92\xBE"), "a\x7F\\u{E4}\\u{1F4BE}");
    EXPECT_EQ(inLocale("\xC2\x80"), "\\u{80}");
    const Locale locale("C.UTF-8");
    ASSERT_TRUE(locale.isThere());
    EXPECT_EQ(inLocale("a\xC3\xA4"), "a\xC3\xA4");
}

TEST(Text, isCutToColumnsAndNotToBytes)
{
    const Locale locale("C.UTF-8");
    ASSERT_TRUE(locale.isThere());
    EXPECT_EQ(cutTo("abcde", 5), "abcde");
    EXPECT_EQ(cutTo("abcde", 4), "abc~");
    EXPECT_EQ(cutTo("abcde", 1), "~");
    EXPECT_EQ(cutTo("", 0), "");
    EXPECT_EQ(cutTo("\x01\x02z", 3), "\x01\x02z"); // what has no width takes a column all the same
    EXPECT_EQ(cutTo("\x01\x02z", 2), "\x01~");
    EXPECT_EQ(cutTo("\xC3\xA4\xC3\xB6\xC3\xBC", 3), "\xC3\xA4\xC3\xB6\xC3\xBC");
    EXPECT_EQ(cutTo("\xC3\xA4\xC3\xB6\xC3\xBC", 2), "\xC3\xA4~");
    EXPECT_EQ(cutTo("e\xCC\x81x", 2), "e\xCC\x81x"); // an accent of its own takes no column
    EXPECT_EQ(cutTo("\xE4\xB8\xAD\xE6\x96\x87", 4), "\xE4\xB8\xAD\xE6\x96\x87"); // two columns each
    EXPECT_EQ(cutTo("\xE4\xB8\xAD\xE6\x96\x87", 3), "\xE4\xB8\xAD~");
    EXPECT_EQ(cutTo("\xE4\xB8\xAD\xE6\x96\x87", 2), "~");
}

TEST(Words, areJoinedAlsoWhereTheyAreTheSame)
{
    EXPECT_EQ(joined({}), "");
    EXPECT_EQ(joined({"sdc"}), "sdc");
    EXPECT_EQ(joined({"sdc", "", "sdc"}), "sdc, , sdc");
    EXPECT_EQ(joined({"a", "b"}, " and "), "a and b");
    EXPECT_EQ(lowered("AZaz@[\xC3\x84"), "azaz@[\xC3\x84");
}

TEST(Words, ofAShellAreQuotedWhereTheyMustBe)
{
    EXPECT_EQ(shellWord("sdc-1_2.3:4@5%6+7=8,9/x"), "sdc-1_2.3:4@5%6+7=8,9/x");
    EXPECT_EQ(shellWord(""), "''");
    EXPECT_EQ(shellWord("two words"), "'two words'");
    EXPECT_EQ(shellWord("it's $HOME"), "'it'\\''s $HOME'");
    EXPECT_EQ(shellWord("~"), "'~'");
}

} // namespace
