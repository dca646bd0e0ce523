#include "Certificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <vector>

namespace arraysim {
namespace {

template <typename T, void (*Free)(T*)>
struct Deleter
{
    void operator()(T* pointer) const { Free(pointer); }
};
void closeFile(std::FILE* file)
{
    std::fclose(file);
}
using Certificate = std::unique_ptr<X509, Deleter<X509, X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY, EVP_PKEY_free>>;
using File = std::unique_ptr<std::FILE, Deleter<std::FILE, closeFile>>;

constexpr long DAY = 24L * 60 * 60;

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

File openPrivate(const std::string& name)
{
    const int descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    must(descriptor >= 0, "write " + name);
    return File(::fdopen(descriptor, "w"));
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

/** A certificate for the key without extensions and signature; issuer null: its own. */
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

void makeAuthority(const std::string& certificateName, const std::string& keyName)
{
    const Key key = newKey();
    const Certificate ca = unsignedCertificate(key, "tessel-arraysim CA", nullptr, 3650);
    extend(ca.get(), ca.get(), NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
    extend(ca.get(), ca.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
    extend(ca.get(), ca.get(), NID_subject_key_identifier, "hash");
    must(X509_sign(ca.get(), key.get(), EVP_sha256()) > 0, "sign a certificate");
    write(certificateName, ca, keyName, key);
}

bool isIpAddress(const std::string& text)
{
    unsigned char binary[16];
    return inet_pton(AF_INET, text.c_str(), binary) == 1 || inet_pton(AF_INET6, text.c_str(), binary) == 1;
}

bool isNamed(X509* certificate, const std::string& name)
{
    return isIpAddress(name) ? X509_check_ip_asc(certificate, name.c_str(), 0) == 1
                             : X509_check_host(certificate, name.c_str(), 0, 0, nullptr) == 1;
}

bool fits(X509* certificate, const std::set<std::string>& names)
{
    time_t tomorrow = std::time(nullptr) + DAY;
    return X509_cmp_time(X509_get0_notAfter(certificate), &tomorrow) > 0 &&
           std::all_of(names.begin(), names.end(),
                       [&](const std::string& name) { return isNamed(certificate, name); });
}

std::string alternativeNames(const std::set<std::string>& names)
{
    std::string list;
    for (const auto& name : names) {
        list += (list.empty() ? "" : ",") + std::string(isIpAddress(name) ? "IP:" : "DNS:") + name;
    }
    return list;
}

/** The addresses of this host's interfaces; those that hold on one link alone need more than an address. */
std::set<std::string> hostAddresses()
{
    std::set<std::string> found;
    ifaddrs* all = nullptr;
    must(::getifaddrs(&all) == 0, "list this host's addresses");
    for (const ifaddrs* entry = all; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr) {
            continue;
        }
        char text[INET6_ADDRSTRLEN] = "";
        if (entry->ifa_addr->sa_family == AF_INET) {
            const auto* address = reinterpret_cast<const sockaddr_in*>(entry->ifa_addr);
            inet_ntop(AF_INET, &address->sin_addr, text, sizeof text);
        } else if (entry->ifa_addr->sa_family == AF_INET6) {
            const auto* address = reinterpret_cast<const sockaddr_in6*>(entry->ifa_addr);
            if (!IN6_IS_ADDR_LINKLOCAL(&address->sin6_addr)) {
                inet_ntop(AF_INET6, &address->sin6_addr, text, sizeof text);
            }
        }
        found.insert(text);
    }
    ::freeifaddrs(all);
    found.erase("");
    return found;
}

void makeServer(const CertificateFiles& files, const std::string& caKeyName,
                const std::set<std::string>& names)
{
    const Certificate ca = readCertificate(files.ca);
    const Key caKey = readKey(caKeyName);
    must(ca && caKey, "read " + files.ca + " and " + caKeyName + ": remove both to have them made anew");
    const Key key = newKey();
    const Certificate server = unsignedCertificate(key, "tessel-arraysim", ca.get(), 825);
    extend(server.get(), ca.get(), NID_basic_constraints, "critical,CA:FALSE");
    extend(server.get(), ca.get(), NID_key_usage, "critical,digitalSignature");
    extend(server.get(), ca.get(), NID_ext_key_usage, "serverAuth");
    extend(server.get(), ca.get(), NID_authority_key_identifier, "keyid");
    extend(server.get(), ca.get(), NID_subject_alt_name, alternativeNames(names));
    must(X509_sign(server.get(), caKey.get(), EVP_sha256()) > 0, "sign a certificate");
    write(files.certificate, server, files.key, key);
}

} // namespace

std::set<std::string> serverNames(const std::string& address)
{
    std::set<std::string> names{"127.0.0.1", "::1", "localhost"};
    if (address != "0.0.0.0" && address != "::") {
        names.insert(address);
        return names;
    }
    names.merge(hostAddresses());
    char name[HOST_NAME_MAX + 1] = "";
    if (::gethostname(name, sizeof name - 1) == 0 && *name != '\0') {
        names.insert(name);
    }
    return names;
}

CertificateFiles provideCertificates(const std::string& stateDir, const std::set<std::string>& names)
{
    CertificateFiles files{stateDir + "/ca.pem", stateDir + "/server.pem", stateDir + "/server.key"};
    const std::string caKey = stateDir + "/ca.key";
    const Certificate ca = readCertificate(files.ca);
    if (!ca) {
        makeAuthority(files.ca, caKey);
    }
    const Certificate server = readCertificate(files.certificate);
    if (!ca || !server || !readKey(files.key) || !fits(server.get(), names)) {
        makeServer(files, caKey, names);
    }
    return files;
}

std::string pinnedKey(const std::string& certificateFile)
{
    const Certificate certificate = readCertificate(certificateFile);
    must(certificate != nullptr, "read " + certificateFile);
    unsigned char* der = nullptr;
    const int size = i2d_X509_PUBKEY(X509_get_X509_PUBKEY(certificate.get()), &der);
    must(size > 0, "read the key of " + certificateFile);
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned length = 0;
    EVP_Digest(der, static_cast<std::size_t>(size), digest, &length, EVP_sha256(), nullptr);
    OPENSSL_free(der);
    std::vector<unsigned char> text(4 * ((length + 2) / 3) + 1);
    EVP_EncodeBlock(text.data(), digest, static_cast<int>(length));
    return "sha256//" + std::string(text.begin(), text.end() - 1);
}

} // namespace arraysim
