#include "VKsysCodec.h"

#include "VKescape.h"

#include <atomic>

namespace {

// The order matters: EncodeXmlData with false keeps the first three rows.
constexpr vk::Escape kXmlRows[] = {{'&', "&amp;"},  {'>', "&gt;"},   {'<', "&lt;"},   {'\'', "&apos;"},
                                   {'"', "&quot;"}, {'\t', "&#x9;"}, {'\n', "&#xa;"}, {'\r', "&#xd;"}};
constexpr vk::Escape kXmlRowsAndLineEnds[] = {{'&', "&amp;"},   {'>', "&gt;"},   {'<', "&lt;"},  {'\'', "&apos;"},
                                              {'"', "&quot;"}, {'\n', "&#xa;"}, {'\r', "&#xd;"}};
constexpr std::size_t kXmlEntities = 5;
constexpr std::size_t kXmlRowsLeftByFalse = 3;

constexpr vk::EscapeTable kXml(kXmlRows);
constexpr vk::EscapeTable kXmlLineEnds(kXmlRowsAndLineEnds);

// How much of kXml is in use, for the whole process.
std::atomic<std::size_t> g_xmlRowsInUse{std::size(kXmlRows)};

} // namespace

std::string VKsysCodec::EncodeXML(const std::string& text, bool encodeLineEnds)
{
    return kXmlLineEnds.Encode(text, encodeLineEnds ? vk::EscapeTable::kAllRows : kXmlEntities);
}

std::string VKsysCodec::EncodeXmlData(const std::string& text, bool whole)
{
    if (!whole)
        g_xmlRowsInUse.store(kXmlRowsLeftByFalse, std::memory_order_relaxed);
    std::string out;
    out.reserve(text.size() + text.size() / 8);
    AppendXmlData(out, text);
    return out;
}

void VKsysCodec::AppendXmlData(std::string& out, std::string_view text)
{
    kXml.Append(out, text, g_xmlRowsInUse.load(std::memory_order_relaxed));
}

std::string VKsysCodec::DecodeXmlData(const std::string& text)
{
    return kXml.Decode(text);
}
