#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The MD5 digest of RFC 1321, for stored passwords and file sums; it is no protection against forgery. Call Init (the
/// constructor does), Update as often as there is data, Finalize once, GetMD5String. One object, one thread.
class VKMD5
{
public:
    VKMD5() { Init(); }

    /// Starts a new digest.
    void Init();
    /// Takes more data in; null or 0 takes nothing.
    void Update(const unsigned char* data, unsigned int length);
    /// Ends the digest; further data needs Init first.
    void Finalize();
    /// The finished digest as 32 lower-case hexadecimal digits and a zero: `text` has room for 33.
    void GetMD5String(char* text) const;

private:
    void Transform(const unsigned char* block);
    static void Encode(unsigned char* bytes, const std::uint32_t* words, unsigned int length);
    static void Decode(std::uint32_t* words, const unsigned char* bytes, unsigned int length);

    std::uint32_t m_state[4];
    std::uint64_t m_count; // bits
    unsigned char m_buffer[64];
    unsigned char m_digest[16];
};

namespace vk {

/// The MD5 digest of a whole text as 32 lower-case hexadecimal digits.
std::string Md5Text(std::string_view text);

} // namespace vk
