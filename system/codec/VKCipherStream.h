#pragma once

#include "VKEncryption.h"

#include <memory>
#include <string_view>

struct evp_cipher_ctx_st;

namespace vk {

/// AES-256 over data of any length, piece by piece: the pieces of the output, one behind the other, are what
/// VKEncryption gives for the whole. Used by one thread at a time; a failure leaves its reason in OpenSSL's error
/// queue.
class CipherStream
{
public:
    using Byte = VKEncryption::Byte;

    static constexpr int kBlock = 16; ///< bytes; an output can be this much longer than its input

    /// \param key 32 bytes; any other length makes every step fail.
    CipherStream(bool encrypt, std::string_view key, vk_encrypt_option option);
    ~CipherStream();
    CipherStream(const CipherStream&) = delete;
    CipherStream& operator=(const CipherStream&) = delete;

    /// The bytes written to out, which has room for the data and one block more; -1 when it fails.
    int Update(std::string_view data, Byte* out);

    /// The padding, at most one block; when decrypting, what the last block held. -1 when it fails.
    int Finish(Byte* out);

private:
    std::unique_ptr<evp_cipher_ctx_st, void (*)(evp_cipher_ctx_st*)> m_context;
};

} // namespace vk
