#include "VKMD5.h"
#include "VKSha256.h"

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

TEST(Md5, AgreesWithRfc1321AndWithOpenSslAtEveryLengthAroundTheBlocks)
{
    EXPECT_EQ(vk::Md5Text("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
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

TEST(VKSha256, AgreesWithTheStandardsExamples)
{
    EXPECT_EQ(vk::Sha256Text("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(vk::Sha256Text(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

} // namespace
