#include "VKEncryption.h"

#include "VKbase64.h"

#include <gtest/gtest.h>

#include <openssl/err.h>

#include <climits>
#include <memory>

namespace {

using Byte = VKEncryption::Byte;

constexpr vk_encrypt_option kEcb = VK_ENCRYPT_AES256_ECB;
constexpr vk_encrypt_option kCbc = VK_ENCRYPT_AES256_CBC;

const Byte* Bytes(const std::string& text) { return vk::BytesOf(text); }

int Length(const std::string& text) { return static_cast<int>(text.size()); }

/// What a call with a byte output gave; owns the buffer, as each caller has to.
struct Result
{
    bool done = false;
    std::unique_ptr<Byte[]> buffer;
    int length = -1;
    std::string error = "of an earlier call";

    std::string text() const { return std::string(vk::TextOf(buffer.get(), length)); }
};

using Full = bool (*)(const Byte*, int, const Byte*, int, Byte*&, int&, std::string&, vk_encrypt_option);
constexpr Full kEncrypt = VKEncryption::SharedKeyEncrypt;
constexpr Full kDecrypt = VKEncryption::SharedKeyDecrypt;

Result Apply(Full operation, const std::string& key, const std::string& data, vk_encrypt_option option)
{
    Result result;
    Byte* out = nullptr;
    result.done =
        operation(Bytes(key), Length(key), Bytes(data), Length(data), out, result.length, result.error, option);
    result.buffer.reset(out);
    return result;
}

std::string Unhex(const std::string& hex)
{
    std::string bytes;
    for (std::size_t at = 0; at < hex.size(); at += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16));
    return bytes;
}

const std::string kKey(32, 'k');

TEST(Key, IsTheSha256OfThePhrase)
{
    // FIPS 180-2, "abc".
    const std::string digest = Unhex("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    for (const vk_encrypt_option option : {kEcb, kCbc, static_cast<vk_encrypt_option>(7)}) {
        Byte bytes[32];
        std::string base64;
        EXPECT_TRUE(VKEncryption::TransformKeyForCipher(std::string("abc"), bytes, option));
        EXPECT_EQ(vk::TextOf(bytes, 32), digest);
        EXPECT_TRUE(VKEncryption::TransformKeyForCipher(std::string("abc"), base64, option));
        EXPECT_EQ(base64, vk::EncodeBase64(digest));
    }
    std::string key("old");
    EXPECT_TRUE(VKEncryption::TransformKeyForCipher(std::string(), key, kEcb));
    EXPECT_EQ(vk::DecodeBase64(key), Unhex("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"));
    EXPECT_FALSE(VKEncryption::TransformKeyForCipher(nullptr, 3, key, kEcb));
    EXPECT_EQ(key, "");
}

TEST(SharedKey, GivesTheAesVectorOfFips197AndPads)
{
    const std::string key = Unhex("000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f");
    const Result result = Apply(kEncrypt, key, Unhex("00112233445566778899aabbccddeeff"), kEcb);
    ASSERT_TRUE(result.done);
    EXPECT_EQ(result.error, "");
    ASSERT_EQ(result.length, 32); // a whole block of padding behind a whole block of text
    EXPECT_EQ(result.text().substr(0, 16), Unhex("8ea2b7ca516745bfeafc49904b496089"));
    EXPECT_EQ(std::string(vk::TextOf(result.buffer.get() + 32, 16)), std::string(16, '\0'));
}

TEST(SharedKey, ChainsBlocksInCbcOnly)
{
    const std::string twice(32, 't');
    const std::string ecb = Apply(kEncrypt, kKey, twice, kEcb).text();
    const std::string cbc = Apply(kEncrypt, kKey, twice, kCbc).text();
    EXPECT_EQ(ecb.substr(0, 16), ecb.substr(16, 16));
    EXPECT_NE(cbc.substr(0, 16), cbc.substr(16, 16));
    EXPECT_NE(ecb.substr(0, 16), cbc.substr(0, 16));
    EXPECT_EQ(cbc, Apply(kEncrypt, kKey, twice, kCbc).text()) << "the vector is fixed";
    EXPECT_EQ(ecb, Apply(kEncrypt, kKey, twice, static_cast<vk_encrypt_option>(0)).text());
}

TEST(SharedKey, EveryLengthComesBackWithTheRestZeroed)
{
    std::string data;
    for (int length = 1; length <= 70; ++length) {
        data += static_cast<char>(length * 11);
        for (const vk_encrypt_option option : {kEcb, kCbc}) {
            const Result secret = Apply(kEncrypt, kKey, data, option);
            const Result plain = Apply(kDecrypt, kKey, secret.text(), option);
            ASSERT_TRUE(plain.done) << plain.error;
            ASSERT_EQ(plain.text(), data);
            const int rest = secret.length + 32 - plain.length;
            ASSERT_EQ(vk::TextOf(plain.buffer.get() + plain.length, rest),
                      std::string(static_cast<std::size_t>(rest), 0));
        }
    }
}

TEST(SharedKey, NamesWhatIsMissing)
{
    struct Way
    {
        Full operation;
        std::string lead;
        char fill;
    };
    for (const Way& way : {Way{kEncrypt, "Encryption error: ", '\0'}, Way{kDecrypt, "Decryption error: ", 'a'}}) {
        const auto expect = [&](const Result& result, const std::string& text, int room) {
            EXPECT_FALSE(result.done);
            EXPECT_EQ(result.error, way.lead + text);
            EXPECT_EQ(result.length, 0);
            const std::string fill(static_cast<std::size_t>(room), way.fill);
            EXPECT_EQ(vk::TextOf(result.buffer.get(), room), fill);
        };
        expect(Apply(way.operation, "", "data", kEcb), "No key provided", 36);
        expect(Apply(way.operation, kKey, "", kEcb), "No input data provided", 32);
        expect(Apply(way.operation, std::string(31, 'k'), "data", kEcb), "Invalid key length", 36);
        expect(Apply(way.operation, std::string(33, 'k'), "data", kCbc), "Invalid key length", 36);

        Result result;
        Byte* out = nullptr;
        result.done = way.operation(nullptr, 32, Bytes(kKey), 32, out, result.length, result.error, kEcb);
        result.buffer.reset(out);
        expect(result, "No key provided", 64);
        result.done = way.operation(Bytes(kKey), 32, Bytes(kKey), -5, out, result.length, result.error, kEcb);
        result.buffer.reset(out);
        expect(result, "No input data provided", 32);
    }
}

TEST(SharedKey, BrokenCipherTextFailsWithTheReasonAndTheFill)
{
    std::string secret = Apply(kEncrypt, kKey, std::string(100, 'p'), kEcb).text();
    const std::string cut = secret.substr(0, 40);
    secret.back() = static_cast<char>(secret.back() ^ 1);
    for (const std::string& broken : {secret, cut}) {
        const Result result = Apply(kDecrypt, kKey, broken, kEcb);
        EXPECT_FALSE(result.done);
        EXPECT_EQ(result.error.rfind("Decryption error: ", 0), 0u);
        EXPECT_GT(result.error.size(), std::string("Decryption error: ").size());
        EXPECT_EQ(result.length, 0);
        EXPECT_EQ(vk::TextOf(result.buffer.get(), Length(broken) + 32), std::string(broken.size() + 32, 'a'));
    }
    EXPECT_EQ(ERR_peek_error(), 0u) << "the thread's queue belongs to its TLS connections";
}

TEST(SharedKey, TakesAnyMixOfBytesAndStrings)
{
    std::string key64;
    VKEncryption::TransformKeyForCipher(std::string("pass phrase"), key64, kEcb);
    const std::string key = *vk::DecodeBase64(key64);
    const std::string data("text\0behind", 11);
    const std::string expected = Apply(kEncrypt, key, data, kCbc).text();
    std::string error;
    std::string out;
    Result bytes;
    const auto take = [&bytes](auto&&... call) {
        Byte* raw = nullptr;
        bytes.done = VKEncryption::SharedKeyEncrypt(call..., raw, bytes.length, bytes.error, kCbc);
        bytes.buffer.reset(raw);
        return bytes.text();
    };
    const auto takePlain = [&bytes](auto&&... call) {
        Byte* raw = nullptr;
        bytes.done = VKEncryption::SharedKeyDecrypt(call..., raw, bytes.length, bytes.error, kCbc);
        bytes.buffer.reset(raw);
        return bytes.text();
    };
    const Byte* const k = Bytes(key);
    EXPECT_EQ(take(k, 32, data), expected);
    EXPECT_EQ(take(key64, Bytes(data), Length(data)), expected);
    EXPECT_EQ(take(key64, data), expected);

    const std::string secret64 = vk::EncodeBase64(expected);
    EXPECT_TRUE(VKEncryption::SharedKeyEncrypt(k, 32, Bytes(data), Length(data), out, error, kCbc) && out == secret64);
    EXPECT_TRUE(VKEncryption::SharedKeyEncrypt(k, 32, data, out, error, kCbc) && out == secret64);
    EXPECT_TRUE(VKEncryption::SharedKeyEncrypt(key64, Bytes(data), Length(data), out, error, kCbc) && out == secret64);
    EXPECT_TRUE(VKEncryption::SharedKeyEncrypt(key64, data, out, error, kCbc) && out == secret64);

    EXPECT_EQ(takePlain(k, 32, secret64), data);
    EXPECT_EQ(takePlain(key64, Bytes(expected), Length(expected)), data);
    EXPECT_EQ(takePlain(key64, secret64), data);

    // A string ends at the plain text's first zero byte.
    const Byte* const e = Bytes(expected);
    EXPECT_TRUE(VKEncryption::SharedKeyDecrypt(k, 32, e, Length(expected), out, error, kCbc) && out == "text");
    EXPECT_TRUE(VKEncryption::SharedKeyDecrypt(k, 32, secret64, out, error, kCbc) && out == "text");
    EXPECT_TRUE(VKEncryption::SharedKeyDecrypt(key64, e, Length(expected), out, error, kCbc) && out == "text");
    EXPECT_TRUE(VKEncryption::SharedKeyDecrypt(key64, secret64, out, error, kCbc) && out == "text");
}

TEST(SharedKey, StringsThatAreNoBase64AreRefused)
{
    std::string error;
    std::string out("old");
    EXPECT_FALSE(VKEncryption::SharedKeyEncrypt(std::string("not a key!"), std::string("x"), out, error, kEcb));
    EXPECT_EQ(error, "Encryption error: Invalid key length");
    EXPECT_EQ(out, "");
    EXPECT_FALSE(VKEncryption::SharedKeyDecrypt(Bytes(kKey), 32, std::string("?"), out, error, kEcb));
    EXPECT_EQ(error, "Decryption error: Input data is not Base64");
    Byte* bytes = nullptr;
    int length = -1;
    EXPECT_FALSE(VKEncryption::SharedKeyDecrypt(Bytes(kKey), 32, std::string("?"), bytes, length, error, kEcb));
    const std::unique_ptr<Byte[]> owner(bytes);
    EXPECT_TRUE(bytes);
    EXPECT_EQ(length, 0);
}

TEST(StoredMessage, IsEcbUnderTheTransformedKeyInBase64)
{
    std::string secret;
    std::string plain;
    std::string error;
    ASSERT_TRUE(VKEncryption::VKEncryptMessage("phrase", "Code blue, room 12", secret, error)) << error;
    Byte key[32];
    VKEncryption::TransformKeyForCipher(std::string("phrase"), key, kEcb);
    std::string expected;
    VKEncryption::SharedKeyEncrypt(key, 32, std::string("Code blue, room 12"), expected, error, kEcb);
    EXPECT_EQ(secret, expected);
    EXPECT_TRUE(VKEncryption::VKDecryptMessage("phrase", secret, plain, error));
    EXPECT_EQ(plain, "Code blue, room 12");

    EXPECT_FALSE(VKEncryption::VKEncryptMessage("phrase", "", secret, error));
    EXPECT_EQ(error, "Failed to encrypt message [Encryption error: No input data provided].<br>");
    EXPECT_FALSE(VKEncryption::VKDecryptMessage("phrase", "AAAA", plain, error));
    EXPECT_EQ(error.rfind("Failed to decrypt message [Decryption error: ", 0), 0u) << error;
    EXPECT_EQ(error.substr(error.size() - 6), "].<br>");
}

TEST(PublicKey, DoesNothingAndSaysSo)
{
    Byte mark = 1;
    Byte* out = &mark;
    int length = 5;
    std::string text("untouched");
    std::string error("untouched");
    EXPECT_FALSE(VKEncryption::PublicKeyEncrypt(Bytes(kKey), 32, Bytes(kKey), 32, out, length, error, kEcb));
    EXPECT_FALSE(VKEncryption::PrivateKeyDecrypt(Bytes(kKey), 32, Bytes(kKey), 32, out, length, error, kEcb));
    EXPECT_FALSE(VKEncryption::PublicKeyEncrypt(kKey, kKey, text, error, kEcb));
    EXPECT_FALSE(VKEncryption::PrivateKeyDecrypt(kKey, kKey, text, error, kEcb));
    EXPECT_EQ(out, &mark);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(text + error, "untoucheduntouched");
}

} // namespace
