#ifndef OUTPUT_PRINTER_H
#define OUTPUT_PRINTER_H

#include <tessel/Fields.h>

#include <json/value.h>

#include <string>
#include <vector>

namespace tesselctl {

using Row = std::vector<RecordField>;

/**
 * Writes results to standard output, as text for people or as JSON for programs; notes go to standard error.
 */
class Printer
{
public:
    explicit Printer(bool json) : m_json(json) {}
    bool isJson() const { return m_json; }

    /** One record: a line for each field, or a JSON object. */
    void record(const Row& row);

    /** A result that is no record: the text, or the JSON value. */
    void result(const std::string& text, const Json::Value& json);

    /** A part of a result, as it is. Throws OutputLost when it cannot be written. */
    void write(const std::string& text);

    /** Something to know beside the result; one line on standard error, as JSON {"note": ...}. */
    void note(const std::string& text) const;

    /** The last word of a command that fails: one line, or a JSON object {"error": ...}. */
    void failure(const std::string& message, int exitCode, const int* arrayCode);

private:
    bool m_json;
};

/** A record as a JSON object; unset fields and secrets are null. */
Json::Value toJson(const Row& row);

/** One line of compact JSON, or an indented text. */
std::string jsonText(const Json::Value& value, bool indented);

/** The value of a field for people: "-" when unset, capacities with their size in words. */
std::string humanValue(const RecordField& field, bool inTable);

} // namespace tesselctl

#endif
