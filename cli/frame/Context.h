#ifndef FRAME_CONTEXT_H
#define FRAME_CONTEXT_H

#include "kernel/Command.h"
#include "kernel/Failure.h"
#include "output/Printer.h"
#include "session/Session.h"

#include <memory>

namespace tesselctl {

/** What a running command has at hand. */
class Context
{
public:
    Context(Values values, Printer& printer) : m_values(std::move(values)), m_printer(printer) {}

    const Values& values() const { return m_values; }
    std::string text(const std::string& name, const std::string& otherwise = "") const
    {
        return m_values.text(name, otherwise);
    }
    bool has(const std::string& name) const { return m_values.has(name); }
    Printer& printer() { return m_printer; }

    /** The session with the array, opened at the first call; closed with the context. */
    Session& session()
    {
        if (!m_session) {
            m_session = Session::open(m_values);
        }
        return *m_session;
    }

    /** A handler of the SDK by its interface: context.handler<CLunHandler>(). */
    template <class Handler>
    Handler& handler()
    {
        return session().handler<Handler>();
    }

    /** For a command that has told its result and yet does not end in success. */
    void endWith(ExitCode code) { m_exitCode = code; }
    ExitCode exitCode() const { return m_exitCode; }

private:
    Values m_values;
    Printer& m_printer;
    std::unique_ptr<Session> m_session;
    ExitCode m_exitCode = ExitCode::SUCCESS;
};

} // namespace tesselctl

#endif
