#pragma once

#include <json/json.h>
#include <memory>
#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <sstream>
#include <string>
#include <vector>

namespace vktest {

/// A JSON web token, seen by whoever receives it.
class JwtReader
{
public:
    explicit JwtReader(const std::string& token) : m_signed(token.substr(0, token.rfind('.')))
    {
        std::istringstream parts(token);
        std::string header, claims, signature;
        std::getline(parts, header, '.');
        std::getline(parts, claims, '.');
        std::getline(parts, signature, '.');
        std::istringstream(Decode(header)) >> m_header;
        std::istringstream(Decode(claims)) >> m_claims;
        m_signature = Decode(signature);
    }

    const Json::Value& Header() const { return m_header; }
    const Json::Value& Claims() const { return m_claims; }

    /// Whether the private key in this PEM text made the signature.
    bool IsSignedBy(const std::string& pem) const
    {
        BIO* const memory = BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()));
        EVP_PKEY* const key = PEM_read_bio_PrivateKey(memory, nullptr, nullptr, nullptr);
        BIO_free(memory);
        const std::string signature = EVP_PKEY_is_a(key, "EC") ? Der() : m_signature;
        EVP_MD_CTX* const context = EVP_MD_CTX_new();
        const bool good =
            EVP_DigestVerifyInit(context, nullptr, EVP_sha256(), nullptr, key) == 1 &&
            EVP_DigestVerify(context, Bytes(signature), signature.size(), Bytes(m_signed), m_signed.size()) == 1;
        EVP_MD_CTX_free(context);
        EVP_PKEY_free(key);
        return good;
    }

    /// A fresh private key, PKCS #8 in PEM form.
    static std::string MakeKey(bool elliptic)
    {
        EVP_PKEY* const key = elliptic ? EVP_EC_gen("P-256") : EVP_RSA_gen(2048);
        BIO* const memory = BIO_new(BIO_s_mem());
        PEM_write_bio_PKCS8PrivateKey(memory, key, nullptr, nullptr, 0, nullptr, nullptr);
        char* text = nullptr;
        const long size = BIO_get_mem_data(memory, &text);
        std::string pem(text, static_cast<std::size_t>(size));
        BIO_free(memory);
        EVP_PKEY_free(key);
        return pem;
    }

private:
    static const unsigned char* Bytes(const std::string& text)
    {
        return reinterpret_cast<const unsigned char*>(text.data());
    }

    static std::string Decode(std::string text)
    {
        for (char& c : text)
            c = c == '-' ? '+' : c == '_' ? '/' : c;
        const std::size_t padding = (4 - text.size() % 4) % 4;
        text.append(padding, '=');
        std::string bytes(text.size(), '\0');
        const int size =
            EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()), Bytes(text), static_cast<int>(text.size()));
        bytes.resize(size < 0 ? 0 : static_cast<std::size_t>(size) - padding);
        return bytes;
    }

    /// The signature of an elliptic key as OpenSSL takes it.
    std::string Der() const
    {
        if (m_signature.size() != 64)
            return {};
        ECDSA_SIG* const signature = ECDSA_SIG_new();
        ECDSA_SIG_set0(signature, BN_bin2bn(Bytes(m_signature), 32, nullptr),
                       BN_bin2bn(Bytes(m_signature) + 32, 32, nullptr));
        unsigned char* der = nullptr;
        const int size = i2d_ECDSA_SIG(signature, &der);
        std::string text(reinterpret_cast<char*>(der), static_cast<std::size_t>(size));
        OPENSSL_free(der);
        ECDSA_SIG_free(signature);
        return text;
    }

    std::string m_signed, m_signature;
    Json::Value m_header, m_claims;
};

} // namespace vktest
