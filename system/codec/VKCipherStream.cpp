#include "VKCipherStream.h"

#include "VKbase64.h"

#include <openssl/evp.h>

namespace vk {

namespace {

constexpr std::size_t kKeyLength = 32;

// A constant of the deployment: changing it makes everything unreadable that was encrypted in CBC mode before.
constexpr CipherStream::Byte kVector[16] = {0x6B, 0x1F, 0xC4, 0x92, 0x3D, 0xE8, 0x57, 0xA0,
                                            0x0E, 0xB9, 0x74, 0x2C, 0xD3, 0x86, 0x41, 0xFA};

} // namespace

CipherStream::CipherStream(bool encrypt, std::string_view key, vk_encrypt_option option)
    : m_context(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free)
{
    const EVP_CIPHER* const cipher = option == VK_ENCRYPT_AES256_CBC ? EVP_aes_256_cbc() : EVP_aes_256_ecb();
    if (m_context && (key.size() != kKeyLength ||
                      EVP_CipherInit_ex(m_context.get(), cipher, nullptr, BytesOf(key), kVector, encrypt ? 1 : 0) != 1))
        m_context.reset();
}

CipherStream::~CipherStream() = default;

int CipherStream::Update(std::string_view data, Byte* out)
{
    int length = 0;
    const bool done =
        m_context && EVP_CipherUpdate(m_context.get(), out, &length, BytesOf(data), static_cast<int>(data.size())) == 1;
    return done ? length : -1;
}

int CipherStream::Finish(Byte* out)
{
    int length = 0;
    return m_context && EVP_CipherFinal_ex(m_context.get(), out, &length) == 1 ? length : -1;
}

} // namespace vk
