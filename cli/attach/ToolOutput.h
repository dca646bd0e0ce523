#ifndef ATTACH_TOOLOUTPUT_H
#define ATTACH_TOOLOUTPUT_H

#include "output/Printer.h"

namespace tesselctl {

/**
 * While it lives, standard output and error are kept aside: what the host's tools print during a scan is no
 * part of the answer, nor of the line that shows progress.
 */
class ToolOutput
{
public:
    ToolOutput();
    ~ToolOutput() { restore(); }
    ToolOutput(const ToolOutput&) = delete;
    ToolOutput& operator=(const ToolOutput&) = delete;

    /** Ends it, and prints the lines that were kept as notes. */
    void tell(const Printer& printer);

private:
    void restore();

    int m_kept;
    int m_output;
    int m_error;
};

} // namespace tesselctl

#endif
