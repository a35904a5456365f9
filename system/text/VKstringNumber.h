#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// Numbers to text and back, without regard to the process's locale: the decimal mark is always a point.

[[nodiscard]] std::string VKintToStr(int value);
[[nodiscard]] std::string VKuintToStr(unsigned int value);
[[nodiscard]] std::string VKlongToStr(long value);
[[nodiscard]] std::string VKulongToStr(unsigned long value);
[[nodiscard]] std::string VKint64ToStr(std::int64_t value);
/// With `digits` places behind the point (0 to 64; others are brought into that range).
[[nodiscard]] std::string VKdblToStr(double value, int digits);
/// The shortest text that reads back as the same value.
[[nodiscard]] std::string VKdblToStr(float value);

/// One to eight hexadecimal digits in either case, with or without "0x" in front; anything else gives 0.
unsigned int VKHexStrToUInt(const std::string& hex);

/// Pairs of hexadecimal digits, in either case, to bytes. Returns how many bytes were written, at most `size`; -1,
/// with nothing written, for null, an odd number of digits or any other character.
int VKHexStrToBytes(const char* hex, unsigned char* bytes, int size);
/// False, with `bytes` empty, for an odd number of digits or any other character.
bool VKHexStrToBytes(const std::string& hex, std::vector<unsigned char>& bytes);

namespace vk {

/// The shortest text that reads back as the same value; "inf" and "nan" for what is no number.
std::string NumberText(double value);
std::string NumberText(float value);

} // namespace vk
