#include "Folder.h"
#include "attach/DetachEffect.h"
#include "disk/Initiator.h"
#include "kernel/Failure.h"
#include "logs/LogFiles.h"
#include "output/Printer.h"
#include "session/Advice.h"
#include "session/Secret.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace tesselctl;
using testing::HasSubstr;

constexpr const char* IQN = "iqn.2026-01.example:host";

std::string messageOf(const std::function<void()>& work)
{
    try {
        work();
        return "";
    } catch (const tesselctl::Failure& failure) {
        return failure.what();
    }
}

TEST(Initiator, isReadFromTheFirstLineThatNamesOne)
{
    const tessel_test::Folder folder;
    const std::string line = std::string("InitiatorName=") + IQN;
    for (const std::string& text :
         {line, line + "\n", "## by iscsi-iname\n\n" + line + "\n", "\t " + line + " \t\r\n",
          "InitiatorName=\nInitiatorName= \t\n" + line + "\nInitiatorName=iqn.other\n"}) {
        EXPECT_EQ(initiatorFromFile(folder.write("name", text)), IQN) << text;
    }
    for (const std::string& text :
         {std::string(), std::string("#" + line), "Initiator=" + line, std::string("InitiatorName=\n")}) {
        const std::string file = folder.write("name", text);
        EXPECT_THAT(messageOf([&] { initiatorFromFile(file); }), HasSubstr("is not in " + file)) << text;
    }
}

TEST(Initiator, isAnIscsiNameByItsKindAlone)
{
    for (const char* name : {"iqn.2026-01.example:host", "eui.02004567A425678D", "naa.52004567BA64678D"}) {
        EXPECT_TRUE(isIscsiName(name)) << name;
    }
    for (const char* name : {"2100001405a0ffff", "", "iqn", "xiqn.", "IQN.x"}) {
        EXPECT_FALSE(isIscsiName(name)) << name;
    }
}

TEST(Secret, isTheFirstLineOfItsFile)
{
    const tessel_test::Folder folder;
    EXPECT_EQ(secretFromFile("--token-file", folder.write("secret", "one two\nthree\n")), "one two");
    EXPECT_EQ(secretFromFile("--token-file", folder.write("secret", "of Windows\r\n")), "of Windows");
    EXPECT_EQ(secretFromFile("--token-file", folder.write("secret", "no end")), "no end");
    for (const char* text : {"", "\n", "\r\n", "\nsecond"}) {
        const std::string file = folder.write("secret", text);
        EXPECT_EQ(messageOf([&] { secretFromFile("--token-file", file); }),
                  "--token-file " + file + ": the first line is to hold the secret, but it is empty");
    }
}

TEST(OwnGroup, isNamedForItsHostAndPerhapsNumbered)
{
    EXPECT_TRUE(isOwnName("tessel_host_7", "7"));
    EXPECT_TRUE(isOwnName("tessel_host_7_2", "7"));
    for (const char* name : {"tessel_host_71", "tessel_host_7_", "tessel_host_7_x", "tessel_host_", "host_7",
                             "my tessel_host_7", "tessel_host_8"}) {
        EXPECT_FALSE(isOwnName(name, "7")) << name;
    }
}

TEST(Record, isWrittenAsJsonByTheKindOfEachField)
{
    const Row row = {{"NAME", RecordField::TEXT, "a\xFF", true, false},
                     {"BIG", RecordField::NUMBER, "18446744073709551615", true, false},
                     {"BELOW", RecordField::NUMBER, "-5", true, false},
                     {"YES", RecordField::FLAG, "true", true, false},
                     {"NO", RecordField::FLAG, "false", true, false},
                     {"SECRET", RecordField::TEXT, "hunter-two", true, true},
                     {"NONE", RecordField::TEXT, "", false, false}};
    EXPECT_EQ(jsonText(toJson(row), false),
              "{\"BELOW\":-5,\"BIG\":18446744073709551615,\"NAME\":\"a\\\\xFF\",\"NO\":false,\"NONE\":null,"
              "\"SECRET\":null,\"YES\":true}");
    EXPECT_EQ(humanValue(row[5], false), "(never shown)");
    EXPECT_EQ(humanValue(row[6], false), "-");
}

TEST(LogDirectory, thatIsNoneIsToldAsThat)
{
    EXPECT_EQ(logDirectory(), "(none: no directory for it can be written)") << "before logging has begun";
}

} // namespace
