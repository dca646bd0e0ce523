#include "X509Files.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>

#include <fcntl.h>

#include <cstdio>
#include <stdexcept>

namespace arraysim {
namespace {

void closeFile(std::FILE* file)
{
    std::fclose(file);
}
using File = std::unique_ptr<std::FILE, Deleter<std::FILE, closeFile>>;

File openPrivate(const std::string& name)
{
    const int descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    must(descriptor >= 0, "write " + name);
    return File(::fdopen(descriptor, "w"));
}

} // namespace

void must(bool succeeded, const std::string& what)
{
    if (!succeeded) {
        throw std::runtime_error("cannot " + what);
    }
}

Key newKey()
{
    return Key(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256")); // the macro EVP_EC_gen() casts const away
}

Certificate readCertificate(const std::string& name)
{
    const File file(std::fopen(name.c_str(), "re"));
    return Certificate(file ? PEM_read_X509(file.get(), nullptr, nullptr, nullptr) : nullptr);
}

Key readKey(const std::string& name)
{
    const File file(std::fopen(name.c_str(), "re"));
    return Key(file ? PEM_read_PrivateKey(file.get(), nullptr, nullptr, nullptr) : nullptr);
}

void write(const std::string& certificateName, const Certificate& certificate, const std::string& keyName,
           const Key& key)
{
    const File keyFile = openPrivate(keyName);
    must(PEM_write_PrivateKey(keyFile.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1,
         "write " + keyName);
    const File certificateFile(std::fopen(certificateName.c_str(), "we"));
    must(certificateFile && PEM_write_X509(certificateFile.get(), certificate.get()) == 1,
         "write " + certificateName);
}

void extend(X509* certificate, X509* issuer, int extension, const std::string& value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* made = X509V3_EXT_conf_nid(nullptr, &context, extension, value.c_str());
    must(made != nullptr && X509_add_ext(certificate, made, -1) == 1, "make a certificate");
    X509_EXTENSION_free(made);
}

Certificate unsignedCertificate(const Key& key, const std::string& name, X509* issuer, long days)
{
    Certificate certificate(X509_new());
    must(certificate && key, "make a certificate");
    unsigned char serial[16];
    must(RAND_bytes(serial, sizeof serial) == 1, "get random bytes");
    serial[0] &= 0x7f;
    BIGNUM* number = BN_bin2bn(serial, sizeof serial, nullptr);
    BN_to_ASN1_INTEGER(number, X509_get_serialNumber(certificate.get()));
    BN_free(number);
    X509_set_version(certificate.get(), X509_VERSION_3);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -DAY);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), days * DAY);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME* subject = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), issuer != nullptr ? X509_get_subject_name(issuer) : subject);
    return certificate;
}

} // namespace arraysim
