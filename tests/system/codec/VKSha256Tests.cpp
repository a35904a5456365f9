#include <gtest/gtest.h>

#include "VKSha256.h"

TEST(VKSha256, AgreesWithTheStandardsExamples)
{
    EXPECT_EQ(vk::Sha256Text("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(vk::Sha256Text(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}
