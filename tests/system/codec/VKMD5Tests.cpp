#include "VKMD5.h"

#include <gtest/gtest.h>

#include <openssl/evp.h>

namespace {

std::string OpenSslMd5(const std::string& text)
{
    unsigned char digest[16];
    EVP_Digest(text.data(), text.size(), digest, nullptr, EVP_md5(), nullptr);
    char hex[33];
    for (int i = 0; i < 16; ++i)
        std::snprintf(hex + 2 * i, 3, "%02x", digest[i]);
    return hex;
}

TEST(Md5, GivesTheVectorsOfRfc1321)
{
    const char* const vectors[][2] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const auto& [text, digest] : vectors)
        EXPECT_EQ(vk::Md5Text(text), digest);
}

TEST(Md5, AgreesWithOpenSslAtEveryLengthAroundTheBlocks)
{
    std::string text;
    for (int length = 0; length <= 200; ++length, text += static_cast<char>(length * 37))
        ASSERT_EQ(vk::Md5Text(text), OpenSslMd5(text)) << length;
}

TEST(Md5, TakesItsDataInPiecesAndMayBeUsedAgain)
{
    const std::string text(1000, 'x');
    const unsigned char* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    VKMD5 digest;
    for (unsigned int step : {1u, 63u, 64u, 65u, 999u}) {
        digest.Init();
        digest.Update(nullptr, 7);
        for (unsigned int at = 0; at < 1000; at += step)
            digest.Update(bytes + at, std::min(step, 1000 - at));
        digest.Finalize();
        char hex[33];
        digest.GetMD5String(hex);
        EXPECT_EQ(hex, OpenSslMd5(text)) << "in steps of " << step;
    }
}

} // namespace
