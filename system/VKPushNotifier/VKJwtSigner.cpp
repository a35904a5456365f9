#include "VKJwtSigner.h"

#include "VKJson.h"
#include "VKsysCodec.h"

#include <algorithm>
#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <vector>

namespace vk {

namespace {

constexpr int kCoordinateSize = 32; // of P-256

template <class T> using Owned = std::unique_ptr<T, void (*)(T*)>;

/// Base64 for URLs, without padding (RFC 4648, 5).
std::string UrlBase64(const std::string& bytes)
{
    std::string text = VKsysCodec::EncodeBase64(reinterpret_cast<const unsigned char*>(bytes.data()),
                                                static_cast<int>(bytes.size()), false);
    std::replace(text.begin(), text.end(), '+', '-');
    std::replace(text.begin(), text.end(), '/', '_');
    text.erase(text.find_last_not_of('=') + 1);
    return text;
}

/// An ECDSA signature as the two numbers one behind the other, as tokens have it, in place of OpenSSL's DER form.
std::string FlatSignature(const std::string& der)
{
    const auto* at = reinterpret_cast<const unsigned char*>(der.data());
    const Owned<ECDSA_SIG> signature(d2i_ECDSA_SIG(nullptr, &at, static_cast<long>(der.size())), &ECDSA_SIG_free);
    std::string flat(2 * kCoordinateSize, '\0');
    auto* const out = reinterpret_cast<unsigned char*>(flat.data());
    const bool good =
        signature && BN_bn2binpad(ECDSA_SIG_get0_r(signature.get()), out, kCoordinateSize) == kCoordinateSize &&
        BN_bn2binpad(ECDSA_SIG_get0_s(signature.get()), out + kCoordinateSize, kCoordinateSize) == kCoordinateSize;
    return good ? flat : std::string();
}

/// OpenSSL would ask for a pass phrase at the terminal.
int NoPassPhrase(char*, int, int, void*) { return 0; }

} // namespace

bool JwtSigner::Load(const std::string& pem, std::string& error)
{
    m_key.reset();
    const Owned<BIO> memory(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), [](BIO* bio) { BIO_free(bio); });
    m_key.reset(PEM_read_bio_PrivateKey(memory.get(), nullptr, &NoPassPhrase, nullptr));
    ERR_clear_error();
    if (!m_key) {
        error = "it holds no private key in PEM form without a pass phrase";
        return false;
    }
    m_elliptic = EVP_PKEY_is_a(m_key.get(), "EC") == 1;
    const bool fits =
        m_elliptic ? EVP_PKEY_get_bits(m_key.get()) == 8 * kCoordinateSize : EVP_PKEY_is_a(m_key.get(), "RSA") == 1;
    if (!fits) {
        m_key.reset();
        error = "its key is neither a P-256 nor an RSA key";
    }
    return fits;
}

std::string JwtSigner::Sign(Json::Value header, const Json::Value& claims) const
{
    if (!m_key)
        return {};
    header["alg"] = m_elliptic ? "ES256" : "RS256";
    const std::string text = UrlBase64(CompactJson(header)) + "." + UrlBase64(CompactJson(claims));
    const std::string signature = Signature(text);
    return signature.empty() ? std::string() : text + "." + UrlBase64(signature);
}

std::string JwtSigner::Signature(const std::string& text) const
{
    const Owned<EVP_MD_CTX> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    const auto* const data = reinterpret_cast<const unsigned char*>(text.data());
    std::size_t size = 0;
    if (!context || EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, m_key.get()) != 1 ||
        EVP_DigestSign(context.get(), nullptr, &size, data, text.size()) != 1)
        return {};
    std::string signature(size, '\0');
    if (EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &size, data, text.size()) !=
        1)
        return {};
    signature.resize(size);
    return m_elliptic ? FlatSignature(signature) : signature;
}

} // namespace vk
