#include "JsonLine.h"

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

} // namespace vk
