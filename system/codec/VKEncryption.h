#pragma once

#include <string>

/// The cipher; any other value is treated as ECB.
enum vk_encrypt_option : int {
    VK_ENCRYPT_AES256_ECB = 1,
    VK_ENCRYPT_AES256_CBC = 2,
};

/// Symmetric encryption with AES-256. Nothing is kept here: callers pass the keys, and each call has its own cipher
/// context, so any thread may call. The initialisation vector is one constant of the program, so the same text under
/// the same key always gives the same cipher text; data is readable only by a build with the same constant.
///
/// Every operation returns false and says why in `error`; none throws. Lengths are bytes. How the forms read their
/// arguments:
/// - A key as bytes is the 32 bytes themselves. A key as a string is the Base64 text that TransformKeyForCipher gave.
/// - `out` as bytes is made with new[], the caller's to delete[] in every case, also on failure; what it held before is
///   not freed. `outLength` is how much of it is meant.
/// - When encrypting, data as a string is its bytes, and `out` as a string is Base64 on one line. When decrypting, data
///   as a string is Base64, and `out` as a string is the plain text up to its first zero byte.
class VKEncryption
{
public:
    using Byte = unsigned char;
    using Option = vk_encrypt_option;

    /// Turns a pass phrase of any length into a key of 32 bytes: EVP_BytesToKey with SHA-256, no salt, one round. The
    /// string forms give it in Base64. False for a null text or key.
    static bool TransformKeyForCipher(const Byte* text, int length, Byte* key, Option option);
    static bool TransformKeyForCipher(const Byte* text, int length, std::string& key, Option option);
    static bool TransformKeyForCipher(const std::string& text, std::string& key, Option option);
    static bool TransformKeyForCipher(const std::string& text, Byte* key, Option option);

    /// The buffer has dataLength + 32 bytes, zero beyond the cipher text.
    static bool SharedKeyEncrypt(const Byte* key, int keyLength, const Byte* data, int dataLength, Byte*& out,
                                 int& outLength, std::string& error, Option option);
    static bool SharedKeyEncrypt(const Byte* key, int keyLength, const Byte* data, int dataLength, std::string& out,
                                 std::string& error, Option option);
    static bool SharedKeyEncrypt(const Byte* key, int keyLength, const std::string& data, Byte*& out, int& outLength,
                                 std::string& error, Option option);
    static bool SharedKeyEncrypt(const Byte* key, int keyLength, const std::string& data, std::string& out,
                                 std::string& error, Option option);
    static bool SharedKeyEncrypt(const std::string& key, const Byte* data, int dataLength, Byte*& out, int& outLength,
                                 std::string& error, Option option);
    static bool SharedKeyEncrypt(const std::string& key, const Byte* data, int dataLength, std::string& out,
                                 std::string& error, Option option);
    static bool SharedKeyEncrypt(const std::string& key, const std::string& data, Byte*& out, int& outLength,
                                 std::string& error, Option option);
    static bool SharedKeyEncrypt(const std::string& key, const std::string& data, std::string& out, std::string& error,
                                 Option option);

    /// The buffer has dataLength + 32 bytes, zero beyond the plain text; on failure it is full of the letter "a".
    static bool SharedKeyDecrypt(const Byte* key, int keyLength, const Byte* data, int dataLength, Byte*& out,
                                 int& outLength, std::string& error, Option option);
    static bool SharedKeyDecrypt(const Byte* key, int keyLength, const Byte* data, int dataLength, std::string& out,
                                 std::string& error, Option option);
    static bool SharedKeyDecrypt(const Byte* key, int keyLength, const std::string& data, Byte*& out, int& outLength,
                                 std::string& error, Option option);
    static bool SharedKeyDecrypt(const Byte* key, int keyLength, const std::string& data, std::string& out,
                                 std::string& error, Option option);
    static bool SharedKeyDecrypt(const std::string& key, const Byte* data, int dataLength, Byte*& out, int& outLength,
                                 std::string& error, Option option);
    static bool SharedKeyDecrypt(const std::string& key, const Byte* data, int dataLength, std::string& out,
                                 std::string& error, Option option);
    static bool SharedKeyDecrypt(const std::string& key, const std::string& data, Byte*& out, int& outLength,
                                 std::string& error, Option option);
    static bool SharedKeyDecrypt(const std::string& key, const std::string& data, std::string& out, std::string& error,
                                 Option option);

    /// Stored messages: AES-256-ECB under the transformed key, in Base64.
    static bool VKEncryptMessage(const std::string& key, const std::string& text, std::string& out, std::string& error);
    static bool VKDecryptMessage(const std::string& key, const std::string& text, std::string& out, std::string& error);

    /// Reserved: these always return false and touch nothing, on purpose.
    static bool PublicKeyEncrypt(const Byte* key, int keyLength, const Byte* data, int dataLength, Byte*& out,
                                 int& outLength, std::string& error, Option option);
    static bool PublicKeyEncrypt(const std::string& key, const std::string& data, std::string& out, std::string& error,
                                 Option option);
    static bool PrivateKeyDecrypt(const Byte* key, int keyLength, const Byte* data, int dataLength, Byte*& out,
                                  int& outLength, std::string& error, Option option);
    static bool PrivateKeyDecrypt(const std::string& key, const std::string& data, std::string& out, std::string& error,
                                  Option option);
};
