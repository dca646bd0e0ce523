#ifndef JOB_ACCESSNAMES_H
#define JOB_ACCESSNAMES_H

#include <string>

namespace ovra::tessel {

/**
 * Names of the objects that access is made of. They are the same in every process and at any time, of
 * letters, digits and "_", and at most 31 characters long.
 */
class AccessNames
{
public:
    static constexpr unsigned MOST = 16; ///< names that are tried, the plain one included

    /** The names of the LUN group, host group and mapping view of a host: tessel_host_7, tessel_host_7_2, ...
     */
    static AccessNames ofHost(const std::string& hostID);
    /** The names of a host that is made for an initiator: tessel_ and 16 hexadecimal digits. */
    static AccessNames ofInitiator(const std::string& initiatorID);

    /** @param index 0 for the plain name, others have a suffix. */
    std::string at(unsigned index) const;
    /** Which of the names a text is; MOST when it is none. */
    unsigned indexOf(const std::string& name) const;
    bool has(const std::string& name) const { return indexOf(name) < MOST; }

private:
    explicit AccessNames(std::string plain) : m_plain(std::move(plain)) {}

    std::string m_plain;
};

} // namespace ovra::tessel

#endif
