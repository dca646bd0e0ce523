#include "Cli.h"

#include <algorithm>
#include <fstream>
#include <sstream>

using ::testing::HasSubstr;

namespace {

struct Mistake
{
    const char* name;
    Words words;
    const char* message; ///< a part of it
};

void PrintTo(const Mistake& one, std::ostream* stream)
{
    *stream << one.name;
}

class WrongLine : public ::testing::TestWithParam<Mistake>
{
protected:
    /** The words, with a file that holds a secret where one is to stand. */
    Words words() const
    {
        Words words = GetParam().words;
        std::replace(words.begin(), words.end(), std::string("<SECRET>"),
                     folder.write("secret", "twelve-bytes\n"));
        return words;
    }

    Folder folder;
    Cli cli;
};

Words newLun(const std::string& size)
{
    return {"lun", "create", "--name", "a", "--pool", "0", "--size", size, "--array", "192.0.2.1"};
}

const Mistake MISTAKES[] = {
    {"NoCommand", {}, "subcommand is required"},
    {"UnknownCommand", {"lum"}, "no command 'lum'"},
    {"UnknownAction", {"lun", "delete", "1"}, "no command 'delete'"},
    {"UnknownOption", {"ping", "--verbose"}, "--verbose"},
    {"NoId", {"lun", "show"}, "ID is required"},
    {"TwoIds", {"lun", "show", "1", "2"}, "not expected"},
    {"RequiredOptionMissing", {"host", "create"}, "--name is required"},
    {"OptionGivenTwice", {"host", "create", "--name", "a", "--name", "b"}, "--name"},
    {"NoSourceOfAList", {"lun", "list"}, "give one of --group or --host"},
    {"TwoSourcesOfAList", {"lun", "list", "--group", "1", "--host", "1"}, "give one of --group or --host"},
    {"QueryWhereThereIsNone", {"lungroup", "list", "--view", "1", "--name", "a"}, "does not go with --view"},
    {"UnknownColumn", {"lun", "list", "--host", "1", "--columns", "SIZE"}, "no column 'SIZE'"},
    {"UnknownForm", {"ping", "--output", "xml"}, "--output"},
    {"NoArray", {"ping"}, "--array"},
    {"ArrayByName", {"ping", "--array", "array.example.org"}, "names are not looked up"},
    {"ArrayPortZero", {"ping", "--array", "192.0.2.1:0"}, "from 1 to 65535"},
    {"ArrayPortTooHigh", {"ping", "--array", "[2001:db8::1]:65536"}, "from 1 to 65535"},
    {"NoUser", {"ping", "--array", "192.0.2.1"}, "--user"},
    {"NoPasswordAndNoTerminal", {"ping", "--array", "192.0.2.1", "--user", "a"}, "--password-file"},
    {"NoPasswordFile",
     {"ping", "--array", "192.0.2.1", "--user", "a", "--password-file", "/nowhere"},
     "No such file"},
    {"NoCaFile", {"ping", "--ca-file", "/nowhere"}, "No such file"},
    {"PinOfAnotherKind", {"ping", "--pin", "md5//x"}, "sha256//"},
    {"TimeoutZero", {"ping", "--timeout", "0"}, "from 1 to 86400"},
    {"SessionWithoutToken", {"ping", "--array", "192.0.2.1", "--device-id", "x"}, "--token-file"},
    {"SessionThatCannotBeNamed",
     {"ping", "--array", "192.0.2.1", "--device-id", "..", "--token-file", "<SECRET>", "--cookie-file",
      "<SECRET>"},
     "the session could not be adopted: device ID, token or cookie"},
    {"SizeThatIsNone", newLun("ten"), "'ten' is not a size"},
    {"SizeOfNothing", newLun("0"), "is nothing"},
    {"SizeWithUnknownUnit", newLun("10GX"), "is not a size"},
    {"SizeBelowZero", newLun("-1G"), "is not a size"},
    {"SizeBeyond64Bits", newLun("16EiB"), "more than 64 bits"},
    {"SizeThatMeansUnset", newLun("18446744073709551615"), "more than 64 bits"},
    {"SizeWithPartOfAByte", newLun("1.0001KB1"), "is not a size"},
    {"SizeThatIsNoWholeNumber", newLun("0.3"), "whole number of bytes"},
    {"SizeBelowASector", newLun("511"), "less than one sector"},
    {"ThinOptionForAThickLun",
     {"lun", "create", "--name", "a", "--pool", "0", "--size", "1G", "--usage-threshold", "5"},
     "--type thin"},
    {"ChapWithoutSecret",
     {"initiator", "iscsi", "create", "iqn.x", "--chap", "oneway"},
     "--chap-secret-file"},
    {"ChapWithoutName",
     {"initiator", "iscsi", "create", "iqn.x", "--chap", "oneway", "--chap-secret-file", "<SECRET>"},
     "CHAP needs --chap-name"},
    {"MutualChapWithoutTheTargetsSecret",
     {"initiator", "iscsi", "create", "iqn.x", "--chap", "mutual", "--chap-name", "n", "--chap-secret-file",
      "<SECRET>"},
     "mutual CHAP needs"},
    {"MutualDiscoveryWithoutTheTargetsSecret",
     {"initiator", "iscsi", "create", "iqn.x", "--discovery-chap", "mutual", "--chap-name", "n",
      "--chap-secret-file", "<SECRET>"},
     "mutual CHAP needs"},
    {"SecretWithoutChap",
     {"initiator", "iscsi", "create", "iqn.x", "--chap-secret-file", "<SECRET>"},
     "a CHAP secret needs --chap"},
    {"TimeoutOfMoreThanADay", {"ping", "--timeout", "86401"}, "from 1 to 86400"},
    {"LimitOfMoreThanADay",
     {"disk", "attach", "lun", "1", "--initiator", "iqn.x", "--find-seconds", "86401"},
     "from 0 to 86400"},
    {"SystemThatThereIsNot", {"host", "create", "--name", "a", "--os", "256"}, "from 0 to 255"},
    {"MoreThanAll",
     {"lun", "create", "--name", "a", "--pool", "0", "--size", "1G", "--type", "thin", "--usage-threshold",
      "101"},
     "from 0 to 100"},
    {"InitialSizeAboveTheSize",
     {"lun", "create", "--name", "a", "--pool", "0", "--size", "1G", "--type", "thin", "--initial-size",
      "2G"},
     "--initial-size is more than --size"},
    {"NoColumns", {"lun", "list", "--host", "1", "--columns", ""}, "--columns names no column"},
    {"HostAndInitiatorToTidy", {"tidy", "--host", "1", "--initiator", "iqn.x"}, "--host does not go with"},
    {"HostAndInitiatorToExplain",
     {"explain", "lun", "1", "--host", "1", "--initiator", "iqn.x"},
     "--host does not go with --initiator"},
    {"EmptyName", {"lungroup", "create", "--name", ""}, "--name may not be empty"},
    {"NothingToModify", {"initiator", "iscsi", "modify", "iqn.x"}, "nothing is to be changed"},
    {"PictureAsJson", {"topology", "--host", "1", "--format", "svg", "--output", "json"}, "does not go with"},
    {"EveryHostAndOne", {"detach", "lun", "1", "--all-hosts", "--initiator", "iqn.x"}, "--all-hosts"},
};

TEST_P(WrongLine, EndsWithCode2AndOneLineThatSaysWhatIsWrong)
{
    const Outcome text = cli.run(words());
    EXPECT_EQ(text.exitCode, 2) << text;
    EXPECT_EQ(text.out, "");
    EXPECT_THAT(text.err, HasSubstr(GetParam().message));
    EXPECT_EQ(text.err.find('\n'), text.err.size() - 1) << text.err;
    EXPECT_THAT(text.err, HasSubstr("--help"));
}

TEST_P(WrongLine, IsAJsonObjectWhereJsonIsAskedFor)
{
    const Words line = words();
    const auto form = std::find(line.begin(), line.end(), "--output");
    if (form != line.end() && *(form + 1) != "json") {
        EXPECT_EQ(cli.run(line).err.rfind("tesselctl: ", 0), 0U) << "no form, so the error is text";
        return;
    }
    const Outcome json = form == line.end() ? cli.json(line) : cli.run(line);
    EXPECT_EQ(json.exitCode, 2) << json;
    const Json::Value error = json.errorJson()["error"];
    EXPECT_EQ(error["exitCode"].asInt(), 2);
    EXPECT_TRUE(error["arrayCode"].isNull());
    EXPECT_THAT(error["message"].asString(), HasSubstr(GetParam().message));
    if (form == line.end()) {
        Words inOneWord = line;
        inOneWord.emplace_back("--output=json");
        EXPECT_EQ(cli.run(inOneWord).err, json.err);
    }
}

INSTANTIATE_TEST_SUITE_P(CommandLine, WrongLine, ::testing::ValuesIn(MISTAKES),
                         [](const auto& one) { return std::string(one.param.name); });

std::string fileText(const std::string& path)
{
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST(CommandLine, TellsItsVersionAndItsCommands)
{
    const Cli cli;
    EXPECT_THAT(cli.run({"--version"}).out, HasSubstr("tesselctl "));
    const Outcome help = cli.run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out, HasSubstr("lungroup"));
    EXPECT_THAT(help.out, HasSubstr("Exit codes"));
    EXPECT_THAT(cli.run({"lun", "create", "--help"}).out, HasSubstr("--size"));
}

TEST(Reference, CompletionScriptHoldsEveryCommandAndOption)
{
    EXPECT_EQ(Cli().run({"reference", "bash"}).out, fileText(TESSELCTL_SOURCE "/completion/tesselctl.bash"));
}

TEST(Reference, ManualPageHoldsEveryCommandAndOption)
{
    const std::string commands = Cli().run({"reference", "mdoc"}).out;
    ASSERT_FALSE(commands.empty());
    EXPECT_NE(fileText(TESSELCTL_SOURCE "/man/tesselctl.1").find(commands), std::string::npos)
        << "the COMMANDS section is not what 'tesselctl reference mdoc' prints";
}

struct Typed
{
    const char* line; ///< the last word is completed
    const char* proposed;
};

TEST(Completion, ProposesWhatFits)
{
    const Typed typed[] = {
        {"tesselctl lung", "lungroup"},
        {"tesselctl lungroup re", "remove"},
        {"tesselctl --output json initiator is", "iscsi"},
        {"tesselctl initiator iscsi m", "modify"},
        {"tesselctl lun create --si", "--size"},
        {"tesselctl lun create --name lun --type thi", "thick thin"},
        {"tesselctl topology --format s", "svg"},
        {"tesselctl ping --password-f", "--password-file"},
    };
    for (const auto& [line, proposed] : typed) {
        const std::string script =
            std::string("source " TESSELCTL_SOURCE "/completion/tesselctl.bash; COMP_WORDS=(") + line +
            "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _tesselctl; echo \"${COMPREPLY[*]}\"";
        FILE* bash = popen(("bash -c '" + script + "'").c_str(), "r");
        char answer[4096] = "";
        EXPECT_NE(fgets(answer, sizeof(answer), bash), nullptr);
        pclose(bash);
        EXPECT_EQ(std::string(answer), std::string(proposed) + "\n") << line;
    }
}

} // namespace
