#ifndef JOB_FINDORMAKE_H
#define JOB_FINDORMAKE_H

#include "job/AccessNames.h"
#include "job/Tries.h"
#include "session/LastFailure.h"

#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ovra::tessel {

/** How an object of one type is found again, made, and bound to where it is found. */
template <class Record>
struct Making
{
    MOType type;
    AccessNames names;
    /** Reads through associations whether there is one of the names up to an index; an empty ID: there is
     * none. */
    std::function<Record(unsigned index)> find;
    std::function<Record(const std::string& name)> create;
    std::function<void(const Record&)> bind; ///< its failures may be quiet
    std::function<void(const Record&)> drop; ///< takes away what this call made, when another one was faster
};

/** What the last try threw, for when there is no other. */
class LastError
{
public:
    void keep()
    {
        m_error = std::current_exception();
        m_noteAgain = rememberedFailure(); // others of this thread come before it is thrown
    }
    /** @param otherwise the message when nothing was thrown. */
    [[noreturn]] void rethrow(const std::string& otherwise) const
    {
        if (m_error) {
            m_noteAgain();
            std::rethrow_exception(m_error);
        }
        throw OvraAPIException(otherwise);
    }

private:
    std::exception_ptr m_error;
    std::function<void()> m_noteAgain;
};

template <class Record>
class Maker
{
public:
    Maker(const Making<Record>& making, const AccessOptions& options, std::vector<NamedObject>& made)
        : m_making(making), m_options(options), m_made(made)
    {
    }

    /** Makes the object, or finds the one that another call makes meanwhile. */
    Record make()
    {
        for (unsigned index = 0; index < AccessNames::MOST; ++index) {
            if (const std::optional<Record> record = makeNamed(index)) {
                return *record;
            }
        }
        m_error.rethrow("no name is free! ensureVisible");
    }

private:
    Record find(unsigned index)
    {
        return whileBusy(m_options, [&] { return m_making.find(index); });
    }

    /** Nothing when the name is taken, and no object of it can be found. */
    std::optional<Record> makeNamed(unsigned index)
    {
        AccessOptions options = m_options;
        if (index !=
            0) { // who makes an object of the first name is waited for; later ones are left by crashes
            options.tries = (options.tries + 1) / 2;
        }
        Tries tries(options);
        do {
            if (const std::optional<Record> created = create(m_making.names.at(index))) {
                return bind(*created, index);
            }
            const Record found = find(index);
            if (!found.ID.empty()) {
                return found;
            }
        } while (tries.another());
        if (!m_isRefused) {
            m_error.rethrow("");
        }
        return std::nullopt;
    }

    /** Nothing when it was refused, or when it is unknown whether it was made. */
    std::optional<Record> create(const std::string& name)
    {
        std::optional<Record> created;
        try {
            created = m_making.create(name);
        } catch (const OvraAPIExceptionWithErrCode& refusal) {
            m_isRefused = !isBusy(refusal);
            m_error.keep();
        } catch (const OvraAPIException&) {
            m_isRefused = false;
            m_error.keep();
        }
        if (created &&
            created->ID.empty()) { // it exists, and cannot be found: a second one would be left behind
            throw OvraAPIException(name + " was made, and could not be read back in time! ensureVisible");
        }
        return created;
    }

    /** Binds the object until reading back finds it, or another one that was faster. */
    Record bind(const Record& created, unsigned index)
    {
        LastError error;
        Tries tries(m_options);
        do {
            try {
                m_making.bind(created);
            } catch (const OvraAPIException&) { // it may have been carried out all the same
                error.keep();
            }
            Record found = find(index);
            if (found.ID == created.ID) {
                m_made.push_back({m_making.type, created.ID, created.NAME});
                return found;
            }
            if (!found.ID.empty()) {
                m_making.drop(created);
                return found;
            }
        } while (tries.another());
        m_making.drop(created);
        error.rethrow(created.NAME + " does not become part of what it was made for! ensureVisible");
    }

    const Making<Record>& m_making;
    const AccessOptions& m_options;
    std::vector<NamedObject>& m_made;
    LastError m_error;
    bool m_isRefused = false;
};

} // namespace ovra::tessel

#endif
