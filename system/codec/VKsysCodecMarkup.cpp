#include "VKsysCodec.h"

#include "VKascii.h"
#include "VKescape.h"
#include "VKstringReplace.h"
#include "VKstringTrim.h"

#include <atomic>

// The texts of documents, web pages and speech.

namespace {

// The order matters: EncodeXmlData with false keeps the first three rows.
constexpr vk::Escape kXmlRows[] = {{'&', "&amp;"},  {'>', "&gt;"},   {'<', "&lt;"},   {'\'', "&apos;"},
                                   {'"', "&quot;"}, {'\t', "&#x9;"}, {'\n', "&#xa;"}, {'\r', "&#xd;"}};
constexpr std::size_t kXmlRowsLeftByFalse = 3;

// The line ends stand last, the five entities of XML first.
constexpr vk::Escape kXmlTextRows[] = {{'&', "&amp;"},  {'>', "&gt;"},   {'<', "&lt;"},  {'\'', "&apos;"},
                                       {'"', "&quot;"}, {'\n', "&#xa;"}, {'\r', "&#xd;"}};
constexpr std::size_t kXmlEntities = 5;

// The blank stands last: it is encoded on request only.
constexpr vk::Escape kWebRows[] = {{'&', "&amp;"},   {'>', "&gt;"},   {'<', "&lt;"},    {'\'', "&#x27;"},
                                   {'"', "&quot;"},  {'|', "&#x7C;"}, {'\t', "&#x09;"}, {'\r', "&#x0D;"},
                                   {'\n', "&#x0A;"}, {' ', "&nbsp;"}};
constexpr std::size_t kWebRowsWithoutBlank = std::size(kWebRows) - 1;

constexpr vk::EscapeTable kXml(kXmlRows);
constexpr vk::EscapeTable kXmlText(kXmlTextRows);
constexpr vk::EscapeTable kWeb(kWebRows);

// How much of kXml is in use, for the whole process.
std::atomic<std::size_t> g_xmlRowsInUse{std::size(kXmlRows)};

constexpr char kLineBreak[] = "<br>";
constexpr char kLineMark[] = "\xE2\x80\xA8"; // U+2028

/// Each line feed next to a carriage return becomes one line feed with it.
std::string SingleLineEnds(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char next = at + 1 < text.size() ? text[at + 1] : '\0';
        const bool inFront = text[at] == '\r' && next == '\n';
        const bool behind = text[at] == '\n' && next == '\r' && text.compare(at + 1, 2, "\r\n") != 0;
        out += inFront || behind ? '\n' : text[at];
        at += inFront || behind ? 1 : 0;
    }
    return out;
}

} // namespace

std::string VKsysCodec::EncodeXML(const std::string& text, bool encodeLineEnds)
{
    return kXmlText.Encode(text, encodeLineEnds ? vk::EscapeTable::kAllRows : kXmlEntities);
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

std::string VKsysCodec::DecodeXmlData(const std::string& text) { return kXml.Decode(text); }

std::string VKsysCodec::EncodeHTML(const std::string& text, bool encodedLineEnds)
{
    std::string out = VKstringReplaceStr(text, "\r\n", kLineBreak);
    findandreplace(out, "\n", kLineBreak);
    findandreplace(out, "\"", "&quot;");
    if (encodedLineEnds)
        for (const char* const lineFeed : {"&#x0A;", "&#x0a;"})
            findandreplace(out, lineFeed, kLineBreak);
    return out;
}

std::string VKsysCodec::DecodeHTML(const std::string& text) { return VKstringReplaceStr(text, kLineBreak, "\n"); }

std::string VKsysCodec::EncodeWebInputData(const std::string& text, bool encodeBlanks)
{
    return kWeb.Encode(SingleLineEnds(text), encodeBlanks ? vk::EscapeTable::kAllRows : kWebRowsWithoutBlank);
}

std::string VKsysCodec::DecodeWebInputData(const std::string& text, bool) { return kWeb.Decode(text); }

std::string VKsysCodec::EncodeWebInputAndEscapeBackSlash(const std::string& text, bool encodeBlanks)
{
    return EscapeBackslash(EncodeWebInputData(text, encodeBlanks));
}

std::string VKsysCodec::EncodeMultiLineData(const std::string& text)
{
    return VKstringReplaceStr(text, "\r\n", kLineMark);
}

std::string VKsysCodec::DecodeMultiLineData(const std::string& text)
{
    return VKstringReplaceStr(text, kLineMark, "\r\n");
}

std::string VKsysCodec::EncodeNewLineCharacters(const std::string& text)
{
    return VKstringReplaceStr(text, "\r\n", kLineBreak);
}

std::string VKsysCodec::EscapeTTSData(const std::string& text)
{
    const auto isLineEnd = [](char c) { return c == '\r' || c == '\n'; };
    std::string out;
    bool lineEnded = false;
    for (const char c : text) {
        if (isLineEnd(c)) {
            lineEnded = true;
        } else if (c != '"' && c != '\'') {
            if (lineEnded && !out.empty() && !vk::IsSpace(out.back()) && !vk::IsSpace(c))
                out += ' ';
            lineEnded = false;
            out += c;
        }
    }
    return out;
}
