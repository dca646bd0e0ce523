#include "Certificates.h"

#include "ServerNames.h"
#include "X509Files.h"

#include <openssl/evp.h>

#include <algorithm>
#include <ctime>
#include <vector>

namespace arraysim {
namespace {

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
