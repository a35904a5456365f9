#include "VKMD5.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr unsigned int kBlock = 64;
constexpr unsigned int kLengthField = 8;

// RFC 1321, 3.4: the shifts of the four rounds, and floor(2^32 * |sin(i)|) for i from 1 to 64.
constexpr unsigned int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
constexpr std::uint32_t kSines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr std::uint32_t RotateLeft(std::uint32_t word, unsigned int bits) { return word << bits | word >> (32 - bits); }

/// The mixing function and the number of the word of one of the 64 steps.
struct Step
{
    std::uint32_t mixed;
    unsigned int word;
};

constexpr Step StepOf(unsigned int i, std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    switch (i / 16) {
    case 0:
        return {(b & c) | (~b & d), i};
    case 1:
        return {(b & d) | (c & ~d), (5 * i + 1) % 16};
    case 2:
        return {b ^ c ^ d, (3 * i + 5) % 16};
    default:
        return {c ^ (b | ~d), 7 * i % 16};
    }
}

} // namespace

void VKMD5::Init()
{
    m_state[0] = 0x67452301;
    m_state[1] = 0xefcdab89;
    m_state[2] = 0x98badcfe;
    m_state[3] = 0x10325476;
    m_count = 0;
    std::fill(std::begin(m_buffer), std::end(m_buffer), static_cast<unsigned char>(0));
    std::fill(std::begin(m_digest), std::end(m_digest), static_cast<unsigned char>(0));
}

void VKMD5::Update(const unsigned char* data, unsigned int length)
{
    if (!data)
        return;
    unsigned int filled = static_cast<unsigned int>(m_count / 8 % kBlock);
    m_count += static_cast<std::uint64_t>(length) * 8;
    while (length > 0) {
        const unsigned int taken = std::min(length, kBlock - filled);
        std::copy_n(data, taken, m_buffer + filled);
        filled += taken;
        data += taken;
        length -= taken;
        if (filled == kBlock) {
            Transform(m_buffer);
            filled = 0;
        }
    }
}

void VKMD5::Finalize()
{
    static constexpr unsigned char kPadding[kBlock] = {0x80};
    const std::uint64_t bits = m_count;
    const unsigned int filled = static_cast<unsigned int>(bits / 8 % kBlock);
    const unsigned int lengthAt = kBlock - kLengthField;
    Update(kPadding, filled < lengthAt ? lengthAt - filled : kBlock + lengthAt - filled);

    const std::uint32_t words[2] = {static_cast<std::uint32_t>(bits), static_cast<std::uint32_t>(bits >> 32)};
    unsigned char length[kLengthField];
    Encode(length, words, kLengthField);
    Update(length, kLengthField);
    Encode(m_digest, m_state, sizeof m_digest);
}

void VKMD5::GetMD5String(char* text) const
{
    for (const unsigned char byte : m_digest) {
        std::snprintf(text, 3, "%02x", byte);
        text += 2;
    }
}

void VKMD5::Transform(const unsigned char* block)
{
    std::uint32_t words[16];
    Decode(words, block, kBlock);
    auto [a, b, c, d] = m_state;
    for (unsigned int i = 0; i < 64; ++i) {
        const Step step = StepOf(i, b, c, d);
        const std::uint32_t sum = a + step.mixed + kSines[i] + words[step.word];
        a = d;
        d = c;
        c = b;
        b += RotateLeft(sum, kShifts[i / 16][i % 4]);
    }
    m_state[0] += a;
    m_state[1] += b;
    m_state[2] += c;
    m_state[3] += d;
}

/// Words to bytes, the low byte first.
void VKMD5::Encode(unsigned char* bytes, const std::uint32_t* words, unsigned int length)
{
    for (unsigned int i = 0; i < length; ++i)
        bytes[i] = static_cast<unsigned char>(words[i / 4] >> (i % 4 * 8));
}

void VKMD5::Decode(std::uint32_t* words, const unsigned char* bytes, unsigned int length)
{
    for (unsigned int i = 0; i < length; i += 4)
        words[i / 4] = bytes[i] | static_cast<std::uint32_t>(bytes[i + 1]) << 8 |
                       static_cast<std::uint32_t>(bytes[i + 2]) << 16 | static_cast<std::uint32_t>(bytes[i + 3]) << 24;
}

std::string vk::Md5Text(std::string_view text)
{
    constexpr std::size_t kPiece = 1u << 30; // Update counts in unsigned int
    VKMD5 digest;
    for (; !text.empty(); text.remove_prefix(std::min(text.size(), kPiece)))
        digest.Update(reinterpret_cast<const unsigned char*>(text.data()),
                      static_cast<unsigned int>(std::min(text.size(), kPiece)));
    digest.Finalize();
    char hex[33];
    digest.GetMD5String(hex);
    return hex;
}
