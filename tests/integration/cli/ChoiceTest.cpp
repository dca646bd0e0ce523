#include "Cli.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <sstream>

namespace {

/** A command line whose last word is one of the words that an option or argument takes. */
struct Choice
{
    const char* name;
    const char* option; ///< empty for an argument
    Words words;
};

void PrintTo(const Choice& one, std::ostream* stream)
{
    *stream << one.name;
}

/** "<LUN>" and the like stand for the objects of the fixture. */
const Choice CHOICES[] = {
    {"Type", "--type", {"lun", "create", "--name", "x", "--pool", "0", "--size", "1G", "--type", "thin"}},
    {"TypeFilter", "--type", {"lun", "list", "--group", "<LUNGROUP>", "--type", "thin"}},
    {"InGroup", "--in-group", {"lun", "list", "--group", "<LUNGROUP>", "--in-group", "no"}},
    {"InView", "--in-view", {"lungroup", "list", "--lun", "<LUN>", "--in-view", "no"}},
    {"Output", "--output", {"lun", "show", "<LUN>", "--output", "json"}},
    {"OutputOfAMistake", "--output", {"lun", "show", "--output", "json"}},
    {"Scope", "--scope", {"ping", "--scope", "domain"}},
    {"Format", "--format", {"topology", "--lun", "<LUN>", "--format", "svg"}},
    {"Chap", "--chap", {"initiator", "iscsi", "modify", "<IQN>", "--name", "x", "--chap", "none"}},
    {"ChapThatLacksItsSecret", "--chap", {"initiator", "iscsi", "create", "iqn.x", "--chap", "oneway"}},
    {"DiscoveryChap",
     "--discovery-chap",
     {"initiator", "iscsi", "create", "iqn.x", "--discovery-chap", "mutual"}},
    {"LogKind", "--log", {"logs", "--log", "run"}},
    {"ReferenceForm", "", {"reference", "bash"}},
};

class AnyCase : public MappingTest, public ::testing::WithParamInterface<Choice>
{
protected:
    Words words() const
    {
        Words words = GetParam().words;
        for (auto& word : words) {
            word = word == "<LUN>" ? lun : word == "<LUNGROUP>" ? lunGroup : word == "<IQN>" ? iqn : word;
        }
        return words;
    }

    /**
     * What a run sends and prints. Of what makes an object only what it asks for: the second one is refused
     * for its name.
     */
    std::string effectOf(const Words& words) const
    {
        array.clearJournal();
        const Outcome outcome = cli.run(words);
        const bool makes = words[1] == "create";
        std::string effect =
            makes || words[0] == "ping" ? "" : std::to_string(outcome.exitCode) + outcome.out + outcome.err;
        for (const auto& request : array.journal()) {
            if (!makes || request["method"] == "POST") {
                effect += request["method"].asString() + request["path"].asString() +
                          request["body"].asString() + "\n";
            }
        }
        return effect;
    }
};

TEST_P(AnyCase, AChoiceInCapitalsDoesWhatItDoesInSmallLetters)
{
    Words capitals = words();
    const std::string wanted = effectOf(capitals);
    for (char& c : capitals.back()) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    EXPECT_EQ(effectOf(capitals), wanted);
}

INSTANTIATE_TEST_SUITE_P(CommandLine, AnyCase, ::testing::ValuesIn(CHOICES),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(CommandLine, EveryOptionWithChoicesIsTriedInAnyCase)
{
    std::set<std::string> tried;
    for (const auto& choice : CHOICES) {
        tried.insert(choice.option);
    }
    std::istringstream script(Cli().run({"reference", "bash"}).out);
    size_t found = 0;
    for (std::string line; std::getline(script, line);) {
        if (line.find("compgen -W \"$words") != std::string::npos ||
            line.find("-W \"") == std::string::npos) {
            continue;
        }
        std::istringstream names(line.substr(0, line.find(')')));
        for (std::string name; names >> name;) {
            EXPECT_TRUE(name == "|" || tried.count(name) == 1) << name;
            ++found;
        }
    }
    EXPECT_GT(found, 0U);
}

} // namespace
