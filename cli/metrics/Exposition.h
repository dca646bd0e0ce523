#ifndef METRICS_EXPOSITION_H
#define METRICS_EXPOSITION_H

#include "metrics/AuditTotals.h"

#include <string>
#include <vector>

namespace tesselctl {

/**
 * Metrics as text. Made of gauges and summaries alone, which read the same in the OpenMetrics format and in
 * that of Prometheus, and ends as the former demands.
 */
class Exposition
{
public:
    using Labels = std::vector<std::pair<std::string, std::string>>;

    void gauge(const std::string& name, const std::string& help);
    void summary(const std::string& name, const std::string& help);
    /** One value of what was begun last. */
    void value(const Labels& labels, double value);
    void total(const Labels& labels, const Total& total);

    std::string text() const { return m_text + "# EOF\n"; }

private:
    void begin(const std::string& name, const std::string& type, const std::string& help);
    void sample(const std::string& suffix, const Labels& labels, double value);

    std::string m_text;
    std::string m_name;
};

/** Puts a text in a file's place: who reads it sees all of the old one, or all of the new. Throws Failure. */
void replaceFile(const std::string& path, const std::string& text);

} // namespace tesselctl

#endif
