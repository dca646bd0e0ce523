// The words of a command line, one on each line of the input.
#include "FuzzTarget.h"

#include "frame/Parser.h"
#include "kernel/Failure.h"
#include "text/Numbers.h"
#include "text/Words.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static tesselctl::Parser parser;
    std::vector<std::string> words = linesOf(textOf(data, size));
    words.insert(words.begin(), "tesselctl");
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    try {
        parser.parse(static_cast<int>(words.size()), arguments.data());
        mustHold(parser.command() != nullptr, "a line that is taken names a command");
        parser.values();
    } catch (const CLI::ParseError&) {
        mustHold(parser.place().compare(0, 9, "tesselctl") == 0,
                 "the place of a mistake begins with the program");
        parser.unknownWord();
    }
    for (const std::string& word : words) {
        try {
            const uint64_t bytes = tesselctl::parseSize("--size", word);
            mustHold(bytes != 0 && bytes != UINT64_MAX && !tesselctl::humanSize(bytes).empty(),
                     "a size is one");
            const uint64_t number = tesselctl::parseNumber("--count", word, 1, 10);
            mustHold(number >= 1 && number <= 10, "a number is in its range");
        } catch (const tesselctl::UsageError&) { // it is none
        }
        mustHold(!tesselctl::shellWord(word).empty(), "a word of the shell is there");
    }
    return 0;
}
