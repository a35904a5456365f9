#include "VKEncryption.h"

#include "VKCipherStream.h"
#include "VKbase64.h"

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <new>

namespace {

using Byte = VKEncryption::Byte;

constexpr int kKeyLength = 32;
constexpr int kSpare = 32; // more than one block of padding

enum class Direction { Encrypt, Decrypt };

/// What differs between the two directions.
struct Way
{
    Direction direction;
    const char* lead; ///< of every error text
    Byte fill;        ///< of an output buffer without content
};

constexpr Way kEncrypt{Direction::Encrypt, "Encryption error: ", 0};
// Callers tell a failed decryption by this fill, on purpose.
constexpr Way kDecrypt{Direction::Decrypt, "Decryption error: ", 'a'};

/// Takes what OpenSSL says about a failure out of the thread's error queue, and leaves what was there before: TLS on
/// the same thread reads the queue too.
class ErrorScope
{
public:
    ErrorScope() { ERR_set_mark(); }
    ~ErrorScope() { ERR_pop_to_mark(); }
    ErrorScope(const ErrorScope&) = delete;
    ErrorScope& operator=(const ErrorScope&) = delete;

    static const char* Reason()
    {
        const unsigned long code = ERR_peek_last_error();
        const char* const reason = code != 0 ? ERR_reason_error_string(code) : nullptr;
        return reason ? reason : "Unknown error";
    }
};

/// A text that is wiped when it goes.
class Secret
{
public:
    explicit Secret(std::string&& text) : m_text(std::move(text)) {}
    ~Secret() { OPENSSL_cleanse(m_text.data(), m_text.size()); }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
    operator std::string_view() const { return m_text; }

private:
    std::string m_text;
};

/// A key that is no Base64 has a length that no cipher takes.
Secret DecodedKey(const std::string& key)
{
    return Secret(vk::DecodeBase64(key).value_or(key.substr(0, kKeyLength - 1)));
}

/// The length written to `out`, -1 when a step fails.
int Transform(Direction direction, std::string_view key, std::string_view data, Byte* out, vk_encrypt_option option)
{
    vk::CipherStream cipher(direction == Direction::Encrypt, key, option);
    const int body = cipher.Update(data, out);
    const int tail = body < 0 ? -1 : cipher.Finish(out + body);
    return tail < 0 ? -1 : body + tail;
}

/// Why this key and these data cannot be worked on; null when they can.
const char* Refusal(std::string_view key, std::string_view data)
{
    if (key.empty())
        return "No key provided";
    if (data.empty())
        return "No input data provided";
    if (key.size() != kKeyLength)
        return "Invalid key length";
    return data.size() > static_cast<std::size_t>(INT_MAX - kSpare) ? "Input data is too long" : nullptr;
}

bool Fail(const Way& way, const char* reason, std::string& error)
{
    error = std::string(way.lead) + reason;
    return false;
}

bool ToBytes(const Way& way, std::string_view key, std::string_view data, Byte*& out, int& outLength,
             std::string& error, vk_encrypt_option option)
{
    const std::size_t room = data.size() + kSpare;
    out = new (std::nothrow) Byte[room]; // the caller's, also on failure
    outLength = 0;
    error.clear();
    if (!out)
        return Fail(way, "Out of memory", error);
    if (const char* const reason = Refusal(key, data)) {
        std::memset(out, way.fill, room);
        return Fail(way, reason, error);
    }

    const ErrorScope scope;
    const int length = Transform(way.direction, key, data, out, option);
    if (length < 0) {
        std::memset(out, way.fill, room);
        return Fail(way, ErrorScope::Reason(), error);
    }
    outLength = length;
    std::memset(out + length, 0, room - static_cast<std::size_t>(length));
    return true;
}

/// Base64 of what was encrypted, or the plain text up to its first zero byte.
bool ToText(const Way& way, std::string_view key, std::string_view data, std::string& out, std::string& error,
            vk_encrypt_option option)
try {
    Byte* bytes = nullptr;
    int length = 0;
    const bool done = ToBytes(way, key, data, bytes, length, error, option);
    const std::unique_ptr<Byte[]> owner(bytes);
    const std::string_view result = vk::TextOf(bytes, length);
    out = way.direction == Direction::Encrypt ? vk::EncodeBase64(result)
                                              : std::string(result.substr(0, result.find('\0')));
    if (bytes)
        OPENSSL_cleanse(bytes, data.size() + kSpare);
    return done;
} catch (const std::bad_alloc&) {
    out.clear();
    return Fail(way, "Out of memory", error);
}

/// Decodes Base64 that is to be decrypted, then goes on with `then(bytes)`. What is no Base64 fails as broken data.
template <class Then> bool WithDecoded(const std::string& data, std::string& error, Then&& then)
{
    const std::optional<std::string> bytes = vk::DecodeBase64(data);
    const bool done = then(bytes ? std::string_view(*bytes) : std::string_view());
    return bytes ? done : Fail(kDecrypt, "Input data is not Base64", error);
}

/// The key of stored messages, wiped when it goes.
class MessageKey
{
public:
    explicit MessageKey(const std::string& phrase)
        : m_length(VKEncryption::TransformKeyForCipher(phrase, m_bytes, VK_ENCRYPT_AES256_ECB) ? kKeyLength : 0)
    {
    }
    ~MessageKey() { OPENSSL_cleanse(m_bytes, sizeof m_bytes); }
    MessageKey(const MessageKey&) = delete;
    MessageKey& operator=(const MessageKey&) = delete;
    const Byte* bytes() const { return m_bytes; }
    int length() const { return m_length; }

private:
    Byte m_bytes[kKeyLength] = {};
    int m_length; // 0 without a key
};

bool MessageFailed(const char* verb, std::string& error)
{
    error = std::string("Failed to ") + verb + " message [" + error + "].<br>";
    return false;
}

} // namespace

bool VKEncryption::TransformKeyForCipher(const Byte* text, int length, Byte* key, Option)
{
    if (!text || length < 0 || !key)
        return false;
    const ErrorScope scope;
    // The cipher gives the length of the key alone, which is the same for both modes.
    return EVP_BytesToKey(EVP_aes_256_ecb(), EVP_sha256(), nullptr, text, length, 1, key, nullptr) == kKeyLength;
}

bool VKEncryption::TransformKeyForCipher(const Byte* text, int length, std::string& key, Option option)
{
    std::string bytes(kKeyLength, '\0');
    const bool done = TransformKeyForCipher(text, length, reinterpret_cast<Byte*>(bytes.data()), option);
    const Secret secret(std::move(bytes));
    key = done ? vk::EncodeBase64(secret) : std::string();
    return done;
}

bool VKEncryption::TransformKeyForCipher(const std::string& text, std::string& key, Option option)
{
    return TransformKeyForCipher(vk::BytesOf(text), static_cast<int>(text.size()), key, option);
}

bool VKEncryption::TransformKeyForCipher(const std::string& text, Byte* key, Option option)
{
    return TransformKeyForCipher(vk::BytesOf(text), static_cast<int>(text.size()), key, option);
}

bool VKEncryption::SharedKeyEncrypt(const Byte* key, int keyLength, const Byte* data, int dataLength, Byte*& out,
                                    int& outLength, std::string& error, Option option)
{
    return ToBytes(kEncrypt, vk::TextOf(key, keyLength), vk::TextOf(data, dataLength), out, outLength, error, option);
}

bool VKEncryption::SharedKeyEncrypt(const Byte* key, int keyLength, const Byte* data, int dataLength, std::string& out,
                                    std::string& error, Option option)
{
    return ToText(kEncrypt, vk::TextOf(key, keyLength), vk::TextOf(data, dataLength), out, error, option);
}

bool VKEncryption::SharedKeyEncrypt(const Byte* key, int keyLength, const std::string& data, Byte*& out, int& outLength,
                                    std::string& error, Option option)
{
    return ToBytes(kEncrypt, vk::TextOf(key, keyLength), data, out, outLength, error, option);
}

bool VKEncryption::SharedKeyEncrypt(const Byte* key, int keyLength, const std::string& data, std::string& out,
                                    std::string& error, Option option)
{
    return ToText(kEncrypt, vk::TextOf(key, keyLength), data, out, error, option);
}

bool VKEncryption::SharedKeyEncrypt(const std::string& key, const Byte* data, int dataLength, Byte*& out,
                                    int& outLength, std::string& error, Option option)
{
    return ToBytes(kEncrypt, DecodedKey(key), vk::TextOf(data, dataLength), out, outLength, error, option);
}

bool VKEncryption::SharedKeyEncrypt(const std::string& key, const Byte* data, int dataLength, std::string& out,
                                    std::string& error, Option option)
{
    return ToText(kEncrypt, DecodedKey(key), vk::TextOf(data, dataLength), out, error, option);
}

bool VKEncryption::SharedKeyEncrypt(const std::string& key, const std::string& data, Byte*& out, int& outLength,
                                    std::string& error, Option option)
{
    return ToBytes(kEncrypt, DecodedKey(key), data, out, outLength, error, option);
}

bool VKEncryption::SharedKeyEncrypt(const std::string& key, const std::string& data, std::string& out,
                                    std::string& error, Option option)
{
    return ToText(kEncrypt, DecodedKey(key), data, out, error, option);
}

bool VKEncryption::SharedKeyDecrypt(const Byte* key, int keyLength, const Byte* data, int dataLength, Byte*& out,
                                    int& outLength, std::string& error, Option option)
{
    return ToBytes(kDecrypt, vk::TextOf(key, keyLength), vk::TextOf(data, dataLength), out, outLength, error, option);
}

bool VKEncryption::SharedKeyDecrypt(const Byte* key, int keyLength, const Byte* data, int dataLength, std::string& out,
                                    std::string& error, Option option)
{
    return ToText(kDecrypt, vk::TextOf(key, keyLength), vk::TextOf(data, dataLength), out, error, option);
}

bool VKEncryption::SharedKeyDecrypt(const Byte* key, int keyLength, const std::string& data, Byte*& out, int& outLength,
                                    std::string& error, Option option)
{
    return WithDecoded(data, error, [&](std::string_view bytes) {
        return ToBytes(kDecrypt, vk::TextOf(key, keyLength), bytes, out, outLength, error, option);
    });
}

bool VKEncryption::SharedKeyDecrypt(const Byte* key, int keyLength, const std::string& data, std::string& out,
                                    std::string& error, Option option)
{
    return WithDecoded(data, error, [&](std::string_view bytes) {
        return ToText(kDecrypt, vk::TextOf(key, keyLength), bytes, out, error, option);
    });
}

bool VKEncryption::SharedKeyDecrypt(const std::string& key, const Byte* data, int dataLength, Byte*& out,
                                    int& outLength, std::string& error, Option option)
{
    return ToBytes(kDecrypt, DecodedKey(key), vk::TextOf(data, dataLength), out, outLength, error, option);
}

bool VKEncryption::SharedKeyDecrypt(const std::string& key, const Byte* data, int dataLength, std::string& out,
                                    std::string& error, Option option)
{
    return ToText(kDecrypt, DecodedKey(key), vk::TextOf(data, dataLength), out, error, option);
}

bool VKEncryption::SharedKeyDecrypt(const std::string& key, const std::string& data, Byte*& out, int& outLength,
                                    std::string& error, Option option)
{
    return WithDecoded(data, error, [&](std::string_view bytes) {
        return ToBytes(kDecrypt, DecodedKey(key), bytes, out, outLength, error, option);
    });
}

bool VKEncryption::SharedKeyDecrypt(const std::string& key, const std::string& data, std::string& out,
                                    std::string& error, Option option)
{
    return WithDecoded(data, error, [&](std::string_view bytes) {
        return ToText(kDecrypt, DecodedKey(key), bytes, out, error, option);
    });
}

bool VKEncryption::VKEncryptMessage(const std::string& key, const std::string& text, std::string& out,
                                    std::string& error)
{
    const MessageKey made(key);
    return SharedKeyEncrypt(made.bytes(), made.length(), text, out, error, VK_ENCRYPT_AES256_ECB) ||
           MessageFailed("encrypt", error);
}

bool VKEncryption::VKDecryptMessage(const std::string& key, const std::string& text, std::string& out,
                                    std::string& error)
{
    const MessageKey made(key);
    return SharedKeyDecrypt(made.bytes(), made.length(), text, out, error, VK_ENCRYPT_AES256_ECB) ||
           MessageFailed("decrypt", error);
}

bool VKEncryption::PublicKeyEncrypt(const Byte*, int, const Byte*, int, Byte*&, int&, std::string&, Option)
{
    return false;
}

bool VKEncryption::PublicKeyEncrypt(const std::string& key, const std::string& data, std::string&, std::string& error,
                                    Option option)
{
    Byte* none = nullptr;
    int length = 0;
    return PublicKeyEncrypt(vk::BytesOf(key), static_cast<int>(key.size()), vk::BytesOf(data),
                            static_cast<int>(data.size()), none, length, error, option);
}

bool VKEncryption::PrivateKeyDecrypt(const Byte*, int, const Byte*, int, Byte*&, int&, std::string&, Option)
{
    return false;
}

bool VKEncryption::PrivateKeyDecrypt(const std::string& key, const std::string& data, std::string&, std::string& error,
                                     Option option)
{
    Byte* none = nullptr;
    int length = 0;
    return PrivateKeyDecrypt(vk::BytesOf(key), static_cast<int>(key.size()), vk::BytesOf(data),
                             static_cast<int>(data.size()), none, length, error, option);
}
