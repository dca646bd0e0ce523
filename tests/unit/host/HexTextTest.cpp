#include "ScannerTest.h"

using testing::ElementsAre;

class HexText : public ScannerTest
{
protected:
    std::string decimal(const std::string& hex)
    {
        std::string in = hex;
        char out[11] = "untouched";
        result = scanner.HextoDec(out, in.data(), sizeof(out));
        return out;
    }

    int result = 0;
    unsigned char data[4] = {0x00, 0xAB, 0x0c, 0xFF};
};

TEST_F(HexText, OfBytesIsLowercase)
{
    char out[9] = {};
    EXPECT_EQ(scanner.BinaryToAscii(out, sizeof(out), data, 0, 4), 0);
    EXPECT_STREQ(out, "00ab0cff");
    EXPECT_EQ(scanner.BinaryToAscii(out, sizeof(out), data, 1, 2), 0);
    EXPECT_STREQ(out, "ab0c");
}

TEST_F(HexText, OfBytesMustFitWithItsTerminator)
{
    char out[9] = {};
    EXPECT_EQ(scanner.BinaryToAscii(out, 8, data, 0, 4), -1);
    EXPECT_EQ(scanner.BinaryToAscii(out, 0, data, 0, 0), -1);
    EXPECT_EQ(scanner.BinaryToAscii(out, 9, data, 0, 0x7fffffff), -1);
    EXPECT_THAT(platform.journal(), ElementsAre());
}

TEST_F(HexText, OfBytesNeedsBothBuffers)
{
    char out[9] = {};
    EXPECT_EQ(scanner.BinaryToAscii(nullptr, 9, nullptr, 0, 4), -1);
    EXPECT_EQ(scanner.BinaryToAscii(nullptr, 9, data, 0, 4), -1);
    EXPECT_EQ(scanner.BinaryToAscii(out, 9, nullptr, 0, 4), -1);
    EXPECT_THAT(platform.journal(), ElementsAre("info: pucBuffer is NULL! BinaryToAscii",
                                                "info: pszHexBuffer is NULL! BinaryToAscii",
                                                "info: pucBuffer is NULL! BinaryToAscii"));
}

TEST_F(HexText, OfALunIdDropsTheOddDigit)
{
    unsigned char out[11] = {};
    EXPECT_EQ(scanner.ConvertLUNIDtoAscii(out, sizeof(out), data, 5), 0);
    EXPECT_STREQ(reinterpret_cast<char*>(out), "00ab");
    EXPECT_EQ(scanner.ConvertLUNIDtoAscii(out, 9, data, 9), -1);
    EXPECT_EQ(scanner.ConvertLUNIDtoAscii(out, 9, data, 8), 0);
}

TEST_F(HexText, OfALunIdNeedsBothBuffers)
{
    unsigned char out[11] = {};
    EXPECT_EQ(scanner.ConvertLUNIDtoAscii(nullptr, 11, nullptr, 9), -1);
    EXPECT_EQ(scanner.ConvertLUNIDtoAscii(out, 11, nullptr, 9), -1);
    EXPECT_THAT(platform.journal(), ElementsAre("info: puszAsciiLunID is NULL! ConvertLUNIDtoAscii",
                                                "info: puszLunLunID is NULL! ConvertLUNIDtoAscii"));
}

TEST_F(HexText, BecomesDecimal)
{
    EXPECT_EQ(decimal("00000001"), "1");
    EXPECT_EQ(decimal("0000000a"), "10");
    EXPECT_EQ(decimal("0000000A"), "10");
    EXPECT_EQ(decimal("0fBcdeF9"), "264036089");
    EXPECT_EQ(decimal("7fffffff"), "2147483647");
    EXPECT_EQ(decimal(""), "0");
    EXPECT_EQ(result, 0);
}

TEST_F(HexText, FromTheSignBitOnIsNegative)
{
    EXPECT_EQ(decimal("ffffffff"), "-1");
    EXPECT_EQ(decimal("123456789"), "591751049"); // what is above 32 bits is lost
    EXPECT_EQ(result, 0);
    decimal("80000000"); // eleven characters do not fit
    EXPECT_EQ(result, -1);
}

TEST_F(HexText, WithAnotherCharacterFailsAndWritesNothing)
{
    for (const char* const text : {"0000000g", "0x1", " 1", "1-", "000000@1"}) {
        EXPECT_EQ(decimal(text), "untouched") << text;
        EXPECT_EQ(result, -1) << text;
    }
}

TEST_F(HexText, ToDecimalNeedsBothBuffers)
{
    char text[11] = "1";
    EXPECT_EQ(scanner.HextoDec(nullptr, nullptr, 11), -1);
    EXPECT_EQ(scanner.HextoDec(text, nullptr, 11), -1);
    EXPECT_EQ(scanner.HextoDec(text, text, 0), -1);
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: pDecStr is NULL! HextoDec", "info: pHexStr is NULL! HextoDec"));
}

TEST_F(HexText, DigitsCountByTheirPlace)
{
    int value = 5;
    EXPECT_EQ(scanner.HexEncode('b', 1, value), 0);
    EXPECT_EQ(value, 5 + 11 * 16);
    EXPECT_EQ(scanner.HexEncode('F', 0, value), 0);
    EXPECT_EQ(value, 5 + 11 * 16 + 15);
    for (const char other : {'g', '1', '\0', '@', '`'}) {
        EXPECT_EQ(scanner.HexEncode(other, 0, value), -1);
    }
    EXPECT_EQ(value, 5 + 11 * 16 + 15);
}

TEST_F(HexText, PlacesAreWorthPowersOf16In32Bits)
{
    EXPECT_EQ(scanner.CalStep(-1), 1);
    EXPECT_EQ(scanner.CalStep(0), 1);
    EXPECT_EQ(scanner.CalStep(1), 16);
    EXPECT_EQ(scanner.CalStep(7), 268435456);
    EXPECT_EQ(scanner.CalStep(8), 0);
    EXPECT_EQ(scanner.CalStep(2000000000), 0);
}
