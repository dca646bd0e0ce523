#include "network/Certificate.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/x509v3.h>

#include <arpa/inet.h>
#include <array>
#include <cstdio>
#include <ctime>
#include <memory>

namespace tesselctl {
namespace {

using Digest = std::array<unsigned char, 32>;

std::string nameText(const X509_NAME* name)
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
    const unsigned long flags = XN_FLAG_RFC2253 & ~static_cast<unsigned long>(ASN1_STRFLGS_ESC_MSB);
    X509_NAME_print_ex(memory.get(), name, 0, flags);
    const char* text = nullptr;
    const long length = BIO_get_mem_data(memory.get(), &text);
    return length > 0 ? std::string(text, static_cast<size_t>(length)) : "";
}

std::string timeText(const ASN1_TIME* time)
{
    std::tm parts{};
    std::array<char, 32> buffer{};
    if (ASN1_TIME_to_tm(time, &parts) != 1 ||
        std::strftime(buffer.data(), buffer.size(), "%Y-%m-%dT%H:%M:%SZ", &parts) == 0) {
        return "";
    }
    return buffer.data();
}

std::string alternativeName(const GENERAL_NAME& name)
{
    if (name.type == GEN_DNS) {
        const auto* text = ASN1_STRING_get0_data(name.d.dNSName);
        return {text, text + ASN1_STRING_length(name.d.dNSName)};
    }
    if (name.type == GEN_IPADD) {
        const int length = ASN1_STRING_length(name.d.iPAddress);
        std::array<char, INET6_ADDRSTRLEN> buffer{};
        if (length == 4 || length == 16) {
            inet_ntop(length == 4 ? AF_INET : AF_INET6, ASN1_STRING_get0_data(name.d.iPAddress),
                      buffer.data(), buffer.size());
        }
        return buffer.data();
    }
    return "";
}

std::vector<std::string> alternativeNames(X509& certificate)
{
    std::vector<std::string> result;
    auto* names =
        static_cast<GENERAL_NAMES*>(X509_get_ext_d2i(&certificate, NID_subject_alt_name, nullptr, nullptr));
    for (int i = 0; i < sk_GENERAL_NAME_num(names); ++i) {
        const std::string text = alternativeName(*sk_GENERAL_NAME_value(names, i));
        if (!text.empty()) {
            result.push_back(text);
        }
    }
    GENERAL_NAMES_free(names);
    return result;
}

std::string colonHex(const Digest& digest)
{
    std::string result;
    for (const unsigned char byte : digest) {
        std::array<char, 4> buffer{};
        std::snprintf(buffer.data(), buffer.size(), "%s%02X", result.empty() ? "" : ":", byte);
        result += buffer.data();
    }
    return result;
}

std::string publicKeyPin(X509& certificate)
{
    unsigned char* encoded = nullptr;
    const int length = i2d_X509_PUBKEY(X509_get_X509_PUBKEY(&certificate), &encoded);
    if (length <= 0) {
        return "";
    }
    Digest digest{};
    EVP_Digest(encoded, static_cast<size_t>(length), digest.data(), nullptr, EVP_sha256(), nullptr);
    OPENSSL_free(encoded);
    std::array<unsigned char, 64> base64{};
    const int size = EVP_EncodeBlock(base64.data(), digest.data(), static_cast<int>(digest.size()));
    return "sha256//" + std::string(base64.begin(), base64.begin() + size);
}

} // namespace

Certificate describe(X509& certificate)
{
    Certificate result;
    result.subject = nameText(X509_get_subject_name(&certificate));
    result.issuer = nameText(X509_get_issuer_name(&certificate));
    result.names = alternativeNames(certificate);
    const ASN1_TIME* from = X509_get0_notBefore(&certificate);
    const ASN1_TIME* until = X509_get0_notAfter(&certificate);
    result.validFrom = timeText(from);
    result.validUntil = timeText(until);
    result.inForce = X509_cmp_current_time(from) < 0 && X509_cmp_current_time(until) > 0;
    result.selfSigned = result.subject == result.issuer;
    Digest digest{};
    X509_digest(&certificate, EVP_sha256(), digest.data(), nullptr);
    result.sha256 = colonHex(digest);
    result.pin = publicKeyPin(certificate);
    return result;
}

} // namespace tesselctl
