#include "TestCertificates.h"

#include "Require.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <array>
#include <cstdio>
#include <memory>

namespace tessel_test {

namespace {

struct Deleter
{
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
    void operator()(FILE* file) const { fclose(file); }
};
using Key = std::unique_ptr<EVP_PKEY, Deleter>;
using X509Pointer = std::unique_ptr<X509, Deleter>;

struct Identity
{
    Key key;
    X509Pointer certificate;
};

const char* fileName(Certificate which)
{
    constexpr std::array<const char*, 4> NAMES = {"good", "expired", "wrong-host", "other-ca-good"};
    return NAMES.at(static_cast<size_t>(which));
}

void addExtension(X509* certificate, X509* issuer, int nid, const char* value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
    require(extension != nullptr && X509_add_ext(certificate, extension, -1) == 1, "extension");
    X509_EXTENSION_free(extension);
}

struct Subject
{
    const char* commonName;
    const char* alternativeNames; ///< null for an authority
    long validFromDays;
    long validToDays;
};

/** A key with a certificate, signed by the issuer, or by itself when that is null. */
Identity makeIdentity(const Subject& subject, const Identity* issuer)
{
    static long serial = 1;
    Identity made{Key(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256")), X509Pointer(X509_new())};
    X509* certificate = made.certificate.get();
    require(made.key && certificate != nullptr, "key");
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial++);
    X509_gmtime_adj(X509_getm_notBefore(certificate), subject.validFromDays * 86400);
    X509_gmtime_adj(X509_getm_notAfter(certificate), subject.validToDays * 86400);
    X509_set_pubkey(certificate, made.key.get());

    X509_NAME* name = X509_get_subject_name(certificate);
    std::string text = subject.commonName;
    std::array<unsigned char, 64> bytes{};
    text.copy(reinterpret_cast<char*>(bytes.data()), bytes.size() - 1);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, bytes.data(), -1, -1, 0);
    X509* issuerCertificate = issuer ? issuer->certificate.get() : certificate;
    X509_set_issuer_name(certificate, X509_get_subject_name(issuerCertificate));
    addExtension(certificate, issuerCertificate, NID_basic_constraints,
                 issuer ? "CA:FALSE" : "critical,CA:TRUE");
    if (subject.alternativeNames) {
        addExtension(certificate, issuerCertificate, NID_subject_alt_name, subject.alternativeNames);
    }
    require(X509_sign(certificate, (issuer ? issuer->key : made.key).get(), EVP_sha256()) > 0, "signature");
    return made;
}

std::unique_ptr<FILE, Deleter> openFile(const std::string& path, const char* mode)
{
    std::unique_ptr<FILE, Deleter> file(fopen(path.c_str(), mode));
    require(file != nullptr, path);
    return file;
}

void writeCertificate(const std::string& path, const Identity& identity)
{
    PEM_write_X509(openFile(path, "we").get(), identity.certificate.get());
}

void writeKey(const std::string& path, const Identity& identity)
{
    PEM_write_PrivateKey(openFile(path, "we").get(), identity.key.get(), nullptr, nullptr, 0, nullptr,
                         nullptr);
}

} // namespace

const TestCertificates& TestCertificates::instance()
{
    static const TestCertificates certificates;
    return certificates;
}

TestCertificates::TestCertificates()
{
    constexpr const char* HERE = "IP:127.0.0.1,IP:::1,DNS:localhost";
    const Identity ca = makeIdentity({"Test authority", nullptr, -30, 30}, nullptr);
    const Identity otherCa = makeIdentity({"Another authority", nullptr, -30, 30}, nullptr);
    writeCertificate(caFile(), ca);
    writeCertificate(otherCaFile(), otherCa);

    const auto make = [&](Certificate which, const Subject& subject, const Identity& issuer) {
        const Identity identity = makeIdentity(subject, &issuer);
        writeCertificate(certificateFile(which), identity);
        writeKey(keyFile(which), identity);
    };
    make(Certificate::Good, {"array", HERE, -30, 30}, ca);
    make(Certificate::Expired, {"array", HERE, -30, -1}, ca);
    make(Certificate::WrongHost, {"array", "DNS:array.invalid", -30, 30}, ca);
    make(Certificate::OtherCa, {"array", HERE, -30, 30}, otherCa);
}

std::string TestCertificates::certificateFile(Certificate which) const
{
    return m_folder.path() + "/" + fileName(which) + ".pem";
}

std::string TestCertificates::keyFile(Certificate which) const
{
    return m_folder.path() + "/" + fileName(which) + ".key";
}

std::string TestCertificates::pinnedKey(Certificate which) const
{
    const X509Pointer certificate(
        PEM_read_X509(openFile(certificateFile(which), "re").get(), nullptr, nullptr, nullptr));
    require(certificate != nullptr, "certificate file");
    unsigned char* der = nullptr;
    const int length = i2d_X509_PUBKEY(X509_get_X509_PUBKEY(certificate.get()), &der);
    require(length > 0, "public key");
    std::array<unsigned char, 32> digest{};
    EVP_Digest(der, static_cast<size_t>(length), digest.data(), nullptr, EVP_sha256(), nullptr);
    OPENSSL_free(der);
    std::array<unsigned char, 64> base64{};
    const int written = EVP_EncodeBlock(base64.data(), digest.data(), static_cast<int>(digest.size()));
    return "sha256//" + std::string(base64.begin(), base64.begin() + written);
}

} // namespace tessel_test
