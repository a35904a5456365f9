#include "TextLine.h"

#include <algorithm>

namespace vk {

std::string JsonLine(const Json::Value& value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

std::string Printable(std::string_view text)
{
    std::string out(text);
    for (char& c : out)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            c = '?';
    return out;
}

std::string OneLine(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string line = Printable(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::size_t first = line.find_first_not_of(' ');
        if (first != std::string::npos)
            out += (out.empty() ? "" : "; ") + line.substr(first, line.find_last_not_of(' ') + 1 - first);
    }
    return out;
}

} // namespace vk
