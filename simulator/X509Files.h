#ifndef SIMULATOR_X509FILES_H
#define SIMULATOR_X509FILES_H

#include <openssl/x509v3.h>

#include <memory>
#include <string>

namespace arraysim {

template <typename T, void (*Free)(T*)>
struct Deleter
{
    void operator()(T* pointer) const { Free(pointer); }
};
using Certificate = std::unique_ptr<X509, Deleter<X509, X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY, EVP_PKEY_free>>;

constexpr long DAY = 24L * 60 * 60; ///< in seconds

/** Throws std::runtime_error "cannot ..." unless it has succeeded. */
void must(bool succeeded, const std::string& what);

Key newKey();

/** Null where there is none to be read. */
Certificate readCertificate(const std::string& name);
Key readKey(const std::string& name);
void write(const std::string& certificateName, const Certificate& certificate, const std::string& keyName,
           const Key& key);

/** A certificate for the key without extensions and signature; issuer null: its own. */
Certificate unsignedCertificate(const Key& key, const std::string& name, X509* issuer, long days);
void extend(X509* certificate, X509* issuer, int extension, const std::string& value);

} // namespace arraysim

#endif
