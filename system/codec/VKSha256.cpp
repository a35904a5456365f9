#include "VKSha256.h"

#include <openssl/evp.h>

#include <stdexcept>

namespace vk {

std::string Sha256Text(std::string_view text)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (EVP_Digest(text.data(), text.size(), digest, &length, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("OpenSSL gives no SHA-256 digest");
    std::string out;
    for (unsigned int i = 0; i < length; ++i)
        out.append(1, kDigits[digest[i] >> 4]).append(1, kDigits[digest[i] & 15]);
    return out;
}

} // namespace vk
