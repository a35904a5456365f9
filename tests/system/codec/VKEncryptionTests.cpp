#include "VKEncryption.h"

#include "VKbase64.h"

#include <gtest/gtest.h>

#include <openssl/err.h>

#include <memory>

namespace {

using Byte = VKEncryption::Byte;

constexpr vk_encrypt_option kEcb = VK_ENCRYPT_AES256_ECB;
constexpr vk_encrypt_option kCbc = VK_ENCRYPT_AES256_CBC;
const std::string kKey(32, 'k');

const Byte* Bytes(const std::string& text) { return vk::BytesOf(text); }

int Length(const std::string& text) { return static_cast<int>(text.size()); }

/// The two operations, each with all its forms.
constexpr auto kEncrypt = [](auto&&... arguments) { return VKEncryption::SharedKeyEncrypt(arguments...); };
constexpr auto kDecrypt = [](auto&&... arguments) { return VKEncryption::SharedKeyDecrypt(arguments...); };

/// What a form with a byte output gave; owns the buffer, as each caller has to.
struct Result
{
    bool done = false;
    std::unique_ptr<Byte[]> buffer;
    int length = -1;
    std::string error = "of an earlier call";

    std::string text() const { return std::string(vk::TextOf(buffer.get(), length)); }
};

template <class Operation, class... Input>
Result ToBytes(Operation operation, vk_encrypt_option option, const Input&... input)
{
    Result result;
    Byte* out = nullptr;
    result.done = operation(input..., out, result.length, result.error, option);
    result.buffer.reset(out);
    return result;
}

template <class Operation>
Result Apply(Operation operation, const std::string& key, const std::string& data, vk_encrypt_option option)
{
    return ToBytes(operation, option, Bytes(key), Length(key), Bytes(data), Length(data));
}

/// The output of a form with a string output, or its error.
template <class Operation, class... Input>
std::string ToText(Operation operation, vk_encrypt_option option, const Input&... input)
{
    std::string out("of an earlier call"), error;
    const bool done = operation(input..., out, error, option);
    EXPECT_TRUE(done || out.empty()) << out;
    return done ? out : error;
}

std::string Unhex(const std::string& hex)
{
    std::string bytes;
    for (std::size_t at = 0; at < hex.size(); at += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16));
    return bytes;
}

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
    EXPECT_EQ(vk::TextOf(result.buffer.get() + 32, 16), std::string(16, '\0'));
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
            const auto room = static_cast<std::size_t>(secret.length) + 32;
            ASSERT_EQ(vk::TextOf(plain.buffer.get(), static_cast<int>(room)),
                      data + std::string(room - data.size(), '\0'));
            ASSERT_EQ(plain.text(), data);
        }
    }
}

template <class Operation> void ExpectToNameWhatIsMissing(Operation operation, const std::string& lead, char fill)
{
    const auto expect = [&](const Result& result, const std::string& text, int room) {
        EXPECT_EQ(std::tuple(result.done, result.error, result.length), std::tuple(false, lead + text, 0));
        EXPECT_EQ(vk::TextOf(result.buffer.get(), room), std::string(static_cast<std::size_t>(room), fill));
    };
    const Byte* const none = nullptr;
    expect(Apply(operation, "", "data", kEcb), "No key provided", 36);
    expect(Apply(operation, kKey, "", kEcb), "No input data provided", 32);
    expect(Apply(operation, std::string(31, 'k'), "data", kEcb), "Invalid key length", 36);
    expect(Apply(operation, std::string(33, 'k'), "data", kCbc), "Invalid key length", 36);
    expect(ToBytes(operation, kEcb, none, 32, Bytes(kKey), 32), "No key provided", 64);
    expect(ToBytes(operation, kEcb, Bytes(kKey), 32, Bytes(kKey), -5), "No input data provided", 32);
}

TEST(SharedKey, NamesWhatIsMissing)
{
    ExpectToNameWhatIsMissing(kEncrypt, "Encryption error: ", '\0');
    ExpectToNameWhatIsMissing(kDecrypt, "Decryption error: ", 'a');
}

TEST(SharedKey, BrokenCipherTextFailsWithTheReasonAndTheFill)
{
    std::string secret = Apply(kEncrypt, kKey, std::string(100, 'p'), kEcb).text();
    const std::string cut = secret.substr(0, 40), lead = "Decryption error: ";
    secret.back() = static_cast<char>(secret.back() ^ 1);
    for (const std::string& broken : {secret, cut}) {
        const Result result = Apply(kDecrypt, kKey, broken, kEcb);
        EXPECT_FALSE(result.done);
        EXPECT_EQ(result.error.substr(0, lead.size()), lead);
        EXPECT_GT(result.error.size(), lead.size());
        EXPECT_EQ(result.length, 0);
        EXPECT_EQ(vk::TextOf(result.buffer.get(), Length(broken) + 32), std::string(broken.size() + 32, 'a'));
    }
    EXPECT_EQ(ERR_peek_error(), 0u) << "the thread's queue belongs to its TLS connections";
}

template <class Operation>
void ExpectOfEveryForm(Operation operation, const std::string& bytesIn, const std::string& textIn,
                       const std::string& bytesOut, const std::string& textOut)
{
    const Byte *const key = Bytes(kKey), *const in = Bytes(bytesIn);
    const std::string key64 = vk::EncodeBase64(kKey);
    const int length = Length(bytesIn);
    EXPECT_EQ(ToBytes(operation, kCbc, key, 32, in, length).text(), bytesOut);
    EXPECT_EQ(ToBytes(operation, kCbc, key, 32, textIn).text(), bytesOut);
    EXPECT_EQ(ToBytes(operation, kCbc, key64, in, length).text(), bytesOut);
    EXPECT_EQ(ToBytes(operation, kCbc, key64, textIn).text(), bytesOut);
    EXPECT_EQ(ToText(operation, kCbc, key, 32, in, length), textOut);
    EXPECT_EQ(ToText(operation, kCbc, key, 32, textIn), textOut);
    EXPECT_EQ(ToText(operation, kCbc, key64, in, length), textOut);
    EXPECT_EQ(ToText(operation, kCbc, key64, textIn), textOut);
}

TEST(SharedKey, TakesAnyMixOfBytesAndStrings)
{
    const std::string data("text\0behind", 11);
    const std::string secret = Apply(kEncrypt, kKey, data, kCbc).text(), secret64 = vk::EncodeBase64(secret);
    ExpectOfEveryForm(kEncrypt, data, data, secret, secret64);
    ExpectOfEveryForm(kDecrypt, secret, secret64, data, "text"); // a string ends at the first zero byte
}

TEST(SharedKey, StringsThatAreNoBase64AreRefused)
{
    const std::string none("?");
    EXPECT_EQ(ToText(kEncrypt, kEcb, std::string("not a key!"), none), "Encryption error: Invalid key length");
    EXPECT_EQ(ToText(kDecrypt, kEcb, Bytes(kKey), 32, none), "Decryption error: Input data is not Base64");
    const Result result = ToBytes(kDecrypt, kEcb, Bytes(kKey), 32, none);
    EXPECT_FALSE(result.done);
    EXPECT_TRUE(result.buffer);
    EXPECT_EQ(result.length, 0);
}

TEST(StoredMessage, IsEcbUnderTheTransformedKeyInBase64)
{
    std::string key64, secret, plain, error;
    const std::string text("Code blue, room 12");
    ASSERT_TRUE(VKEncryption::VKEncryptMessage("phrase", text, secret, error)) << error;
    VKEncryption::TransformKeyForCipher(std::string("phrase"), key64, kEcb);
    EXPECT_EQ(secret, ToText(kEncrypt, kEcb, key64, text));
    EXPECT_TRUE(VKEncryption::VKDecryptMessage("phrase", secret, plain, error));
    EXPECT_EQ(plain, text);

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
    std::string text("untouched"), error("untouched");
    EXPECT_FALSE(VKEncryption::PublicKeyEncrypt(Bytes(kKey), 32, Bytes(kKey), 32, out, length, error, kEcb));
    EXPECT_FALSE(VKEncryption::PrivateKeyDecrypt(Bytes(kKey), 32, Bytes(kKey), 32, out, length, error, kEcb));
    EXPECT_FALSE(VKEncryption::PublicKeyEncrypt(kKey, kKey, text, error, kEcb));
    EXPECT_FALSE(VKEncryption::PrivateKeyDecrypt(kKey, kKey, text, error, kEcb));
    EXPECT_EQ(out, &mark);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(text + error, "untoucheduntouched");
}

} // namespace
