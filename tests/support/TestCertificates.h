#ifndef SUPPORT_TESTCERTIFICATES_H
#define SUPPORT_TESTCERTIFICATES_H

#include "Folder.h"

#include <string>

namespace tessel_test {

/** Which certificate a test server shows. */
enum class Certificate
{
    Good,      ///< names 127.0.0.1, ::1 and localhost, signed by the authority in caFile()
    Expired,   ///< the same, but not valid any more
    WrongHost, ///< signed by the same authority for another host name only
    OtherCa    ///< good names, signed by an authority that nobody trusts
};

/**
 * Certificates made at run time in a temporary folder, once for a process, removed when it ends.
 * Thread-safe after the first call of instance().
 */
class TestCertificates
{
public:
    static const TestCertificates& instance();

    /** PEM file with the authority that signed every certificate but OtherCa. */
    std::string caFile() const { return m_folder.path() + "/ca.pem"; }
    /** PEM file with the authority of OtherCa. */
    std::string otherCaFile() const { return m_folder.path() + "/other-ca.pem"; }
    std::string certificateFile(Certificate which) const;
    std::string keyFile(Certificate which) const;
    /** Public key of a certificate as "sha256//<base64>". */
    std::string pinnedKey(Certificate which) const;

    TestCertificates(const TestCertificates&) = delete;
    TestCertificates& operator=(const TestCertificates&) = delete;

private:
    TestCertificates();

    Folder m_folder;
};

} // namespace tessel_test

#endif
