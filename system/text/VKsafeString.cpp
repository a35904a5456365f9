#include "VKsafeString.h"

#include "VKField.h"
#include "VKascii.h"
#include "VKstringCopy.h"

namespace {

constexpr std::size_t kBufferSize = 4096;
constexpr std::size_t kLimit = 4090; // the longest code behind it, and the zero, still fit

constexpr vk::CodeText<char> kNames[] = {{'\t', "<TAB>"}, {'\n', "<LF>"}, {'\r', "<CR>"}, {'\x1B', "<ESC>"}};

const char* InThreadBuffer(std::string_view bytes)
{
    thread_local char buffer[kBufferSize];
    vk::CopyBounded(buffer, vk::SafeText(bytes, kLimit), sizeof buffer);
    return buffer;
}

} // namespace

std::string vk::SafeText(std::string_view bytes, std::size_t limit)
{
    std::string out;
    for (const char c : bytes) {
        if (out.size() > limit)
            break;
        if (IsPrint(c)) {
            out += c;
        } else if (const char* const name = TextOfCode(kNames, c, nullptr)) {
            out += name;
        } else {
            out += '<';
            out += kHexDigits[ToByte(c) >> 4];
            out += kHexDigits[ToByte(c) & 0x0F];
            out += '>';
        }
    }
    return out;
}

const char* VKutilSafeByteString(const char* bytes, int length)
{
    const bool empty = !bytes || length < 1;
    return InThreadBuffer(empty ? std::string_view() : std::string_view(bytes, static_cast<std::size_t>(length)));
}

const char* VKutilSafeString(const char* text) { return InThreadBuffer(vk::ViewOf(text)); }
