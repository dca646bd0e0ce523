#ifndef OBJECTS_INPUT_H
#define OBJECTS_INPUT_H

#include "kernel/Command.h"
#include "kernel/Failure.h"
#include "session/Secret.h"
#include "text/Numbers.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace tesselctl {

/** An option of the command line and the member of a record that it sets. */
template <class Record>
struct Input
{
    Option option;
    std::function<void(Record&, const std::string&)> set;

    Input required() const { return {option.asRequired(), set}; }
};

template <class Record>
using Inputs = std::vector<Input<Record>>;

template <class Record>
Input<Record> textInput(const char* name, const char* value, const char* help, std::string Record::*member)
{
    return {{name, value, help}, [=](Record& record, const std::string& text) {
                if (text.empty()) {
                    throw UsageError(std::string(name) + " may not be empty");
                }
                record.*member = text;
            }};
}

template <class Record, class Number>
Input<Record> numberInput(const char* name, const char* value, const char* help, Number Record::*member,
                          uint64_t highest = std::numeric_limits<Number>::max())
{
    return {{name, value, help}, [=](Record& record, const std::string& text) {
                record.*member = static_cast<Number>(parseNumber(name, text, 0, highest));
            }};
}

template <class Record>
Input<Record> sizeInput(const char* name, const char* help, uint64_t Record::*member)
{
    return {{name, "SIZE", help},
            [=](Record& record, const std::string& text) { record.*member = parseSize(name, text); }};
}

/** A word that stands for a value of the array. */
template <class Value>
using Choices = std::vector<std::pair<std::string, Value>>;

template <class Record, class Value>
Input<Record> choiceInput(const char* name, const char* value, const char* help, Value Record::*member,
                          const Choices<Value>& choices)
{
    Option option{name, value, help};
    for (const auto& choice : choices) {
        option.choices.push_back(choice.first);
    }
    return {option, [=](Record& record, const std::string& text) {
                for (const auto& choice : choices) {
                    if (choice.first == text) {
                        record.*member = choice.second;
                    }
                }
            }};
}

/** An option without a value. */
template <class Record, class Value>
Input<Record> flagInput(const char* name, const char* help, Value Record::*member, Value whenGiven)
{
    return {{name, "", help}, [=](Record& record, const std::string&) { record.*member = whenGiven; }};
}

/** A secret, which the command line names the file of. */
template <class Record>
Input<Record> secretInput(const char* name, const char* help, std::string Record::*member)
{
    Option option{name, "FILE", help};
    option.isFile = true;
    return {option,
            [=](Record& record, const std::string& path) { record.*member = secretFromFile(name, path); }};
}

/** For the flags that know a third state, unset. */
inline const Choices<int32_t>& yesOrNo()
{
    static const Choices<int32_t> choices = {{"yes", 1}, {"no", 0}};
    return choices;
}

template <class Record>
std::vector<Option> optionsOf(const Inputs<Record>& inputs)
{
    std::vector<Option> options;
    for (const auto& input : inputs) {
        options.push_back(input.option);
    }
    return options;
}

/** Sets what the command line gives and leaves the rest of the record as it is. */
template <class Record>
void apply(const Inputs<Record>& inputs, const Values& values, Record& record)
{
    for (const auto& input : inputs) {
        if (values.has(input.option.name)) {
            input.set(record, values.text(input.option.name));
        }
    }
}

} // namespace tesselctl

#endif
