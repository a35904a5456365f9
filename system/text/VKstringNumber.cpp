#include "VKstringNumber.h"

#include "VKascii.h"

#include <algorithm>
#include <charconv>

namespace {

template <class Number> std::string ShortestText(Number value)
{
    char text[64];
    const std::to_chars_result end = std::to_chars(std::begin(text), std::end(text), value);
    return std::string(text, end.ptr);
}

} // namespace

namespace vk {

std::string NumberText(double value) { return ShortestText(value); }
std::string NumberText(float value) { return ShortestText(value); }

} // namespace vk

std::string VKintToStr(int value) { return ShortestText(value); }
std::string VKuintToStr(unsigned int value) { return ShortestText(value); }
std::string VKlongToStr(long value) { return ShortestText(value); }
std::string VKulongToStr(unsigned long value) { return ShortestText(value); }
std::string VKint64ToStr(std::int64_t value) { return ShortestText(value); }
std::string VKdblToStr(float value) { return ShortestText(value); }

std::string VKdblToStr(double value, int digits)
{
    // The largest double has 309 digits before the point.
    char text[400];
    const int places = std::clamp(digits, 0, 64);
    const std::to_chars_result end =
        std::to_chars(std::begin(text), std::end(text), value, std::chars_format::fixed, places);
    return std::string(text, end.ptr);
}

unsigned int VKHexStrToUInt(const std::string& hex)
{
    std::string_view digits(hex);
    if (digits.size() > 2 && digits[0] == '0' && vk::ToLower(digits[1]) == 'x')
        digits.remove_prefix(2);
    unsigned int value = 0;
    const std::from_chars_result end = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return end.ec == std::errc() && end.ptr == digits.data() + digits.size() ? value : 0;
}

int VKHexStrToBytes(const char* hex, unsigned char* bytes, int size)
{
    std::vector<unsigned char> all;
    if (!hex || !bytes || size < 0 || !VKHexStrToBytes(std::string(hex), all))
        return -1;
    const int count = static_cast<int>(std::min(all.size(), static_cast<std::size_t>(size)));
    std::copy_n(all.begin(), count, bytes);
    return count;
}

bool VKHexStrToBytes(const std::string& hex, std::vector<unsigned char>& bytes)
{
    bytes.clear();
    for (std::size_t at = 0; at < hex.size(); at += 2) {
        const int byte = vk::HexByte(hex, at);
        if (byte < 0) {
            bytes.clear();
            return false;
        }
        bytes.push_back(static_cast<unsigned char>(byte));
    }
    return true;
}
