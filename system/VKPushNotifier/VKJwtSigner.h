#pragma once

#include <json/value.h>
#include <memory>
#include <openssl/evp.h>
#include <string>

namespace vk {

/// Signs JSON web tokens (RFC 7519, RFC 7515): ES256 with a P-256 key, RS256 with an RSA key (RFC 7518). The key never
/// leaves the object.
class JwtSigner
{
public:
    /// A private key in PEM form, without a pass phrase. False, and `error` says why without a word of the key, for
    /// anything else.
    bool Load(const std::string& pem, std::string& error);
    bool IsLoaded() const { return m_key != nullptr; }

    /// The signed token; empty when it cannot be made. `header` gets "alg" added.
    std::string Sign(Json::Value header, const Json::Value& claims) const;

private:
    struct Free
    {
        void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    };
    std::string Signature(const std::string& text) const;

    std::unique_ptr<EVP_PKEY, Free> m_key;
    bool m_elliptic = false;
};

} // namespace vk
