#include "output/Printer.h"

#include "kernel/Failure.h"
#include "text/Display.h"
#include "text/Numbers.h"

#include <json/writer.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iostream>

namespace tesselctl {
namespace {

/** Fields that hold bytes. */
constexpr std::array<const char*, 2> BYTE_FIELDS = {"CAPACITY", "ALLOCCAPACITY"};

Json::Value numberOf(const std::string& text)
{
    return text[0] == '-' ? Json::Value(Json::Int64(std::stoll(text)))
                          : Json::Value(Json::UInt64(std::stoull(text)));
}

} // namespace

std::string humanValue(const RecordField& field, bool inTable)
{
    if (field.isSecret) {
        return "(never shown)";
    }
    if (!field.isSet) {
        return "-";
    }
    const bool isBytes = std::find(BYTE_FIELDS.begin(), BYTE_FIELDS.end(), field.name) != BYTE_FIELDS.end();
    if (!isBytes) {
        return printable(field.value);
    }
    const std::string human = humanSize(std::stoull(field.value));
    return inTable ? human : field.value + " (" + human + ")";
}

Json::Value toJson(const Row& row)
{
    Json::Value object(Json::objectValue);
    for (const auto& field : row) {
        Json::Value& value = object[field.name];
        if (!field.isSet || field.isSecret) {
            continue; // null
        }
        switch (field.kind) {
        case RecordField::NUMBER:
            value = numberOf(field.value);
            break;
        case RecordField::FLAG:
            value = field.value == "true";
            break;
        case RecordField::TEXT:
            value = validUtf8(field.value);
            break;
        }
    }
    return object;
}

std::string jsonText(const Json::Value& value, bool indented)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = indented ? "  " : "";
    builder["emitUTF8"] = true;
    return plainJson(Json::writeString(builder, value));
}

void Printer::record(const Row& row)
{
    size_t width = 0;
    for (const auto& field : row) {
        width = std::max(width, field.name.size());
    }
    std::string text;
    for (const auto& field : row) {
        text +=
            field.name + std::string(width + 2 - field.name.size(), ' ') + humanValue(field, false) + "\n";
    }
    result(text, toJson(row));
}

void Printer::result(const std::string& text, const Json::Value& json)
{
    write(m_json ? jsonText(json, true) + "\n" : text);
}

void Printer::write(const std::string& text)
{
    errno = 0;
    std::cout << text << std::flush;
    if (!std::cout) {
        throw OutputLost(errno);
    }
}

void Printer::note(const std::string& text) const
{
    if (!m_json) {
        std::cerr << "tesselctl: " << printable(text) << std::endl;
        return;
    }
    Json::Value line(Json::objectValue);
    line["note"] = validUtf8(text);
    std::cerr << jsonText(line, false) << std::endl;
}

void Printer::failure(const std::string& message, int exitCode, const int* arrayCode)
{
    if (!m_json) {
        std::cerr << "tesselctl: " << printable(message) << std::endl;
        return;
    }
    Json::Value error(Json::objectValue);
    error["error"]["message"] = validUtf8(message);
    error["error"]["exitCode"] = exitCode;
    error["error"]["arrayCode"] = arrayCode == nullptr ? Json::Value() : Json::Value(*arrayCode);
    std::cerr << jsonText(error, false) << std::endl;
}

} // namespace tesselctl
