#pragma once

#include <array>
#include <string>
#include <string_view>

namespace vk {

/// Which of the 128 ASCII codes a URL carries as they are (the blank as "+").
constexpr std::array<bool, 128> UrlSafeCodes()
{
    std::array<bool, 128> safe{};
    for (std::size_t c = 0; c < safe.size(); ++c)
        safe[c] = c == ' ' || c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    return safe;
}

} // namespace vk

/// Text transformations: Base64, URL, XML, HTML, JSON, file names, web input. Stateless but for the one XML table (see
/// EncodeXmlData); every operation is class-wide and may be called from any thread. Strings may hold zero bytes. An
/// empty input gives an empty result. Decoders leave what they do not know as it stands, unless told otherwise.
class VKsysCodec
{
public:
    static constexpr char m_hex[] = "0123456789ABCDEF";
    static constexpr std::array<bool, 128> m_isUrlSafe = vk::UrlSafeCodes();

    virtual ~VKsysCodec() = default;

    // Base64 (RFC 4648), with "=" padding.

    /// With line breaks a carriage return and a line feed follow every 76 characters, and the end. Null or a length
    /// below 1 gives the empty text.
    static std::string EncodeBase64(const unsigned char* data, int length, bool lineBreaks);
    /// The same; false, with `out` empty, when there is nothing to encode.
    static bool EncodeBase64(const unsigned char* data, int length, std::string& out, bool lineBreaks);
    /// In place: `length` goes in as that of the text and comes out as that of the bytes. White space is skipped, "="
    /// ends the text, padding may be missing. False, with a length of 0 and the content undefined, for null or a text
    /// that is not Base64.
    static bool DecodeBase64(unsigned char* data, int& length);

    // Names and URLs.

    /// Letters and digits stay, every other byte becomes "%" and the signed byte in hexadecimal: eight digits from 0x80
    /// on, the settled form.
    static std::string EncodeName(const std::string& text);
    static std::string EncodeFileName(const std::string& text);
    static std::string DecodeName(const std::string& text);
    static std::string DecodeFileName(const std::string& text);

    /// What m_isUrlSafe tells stays, a blank becomes "+", every other byte "%" and two digits; "-", "." and "~" too,
    /// on purpose.
    static std::string EncodeUrl(const std::string& text);
    /// The reverse. A "%" without two hexadecimal digits behind it makes the whole result empty.
    static std::string DecodeUrl(const std::string& text);

    /// For HTTP requests, into `out` of `size` bytes, at least 5. Letters, digits, "/", "_" and "." stay, every other
    /// byte becomes "%" and two digits; a line feed that follows no carriage return gets "%0D" in front. Stops in front
    /// of the first byte that does not fit whole. Returns the length written, -1 for null or too small a size.
    static int VKhttpStrEncode(char* out, int size, const char* in);

    // XML.

    /// The five XML entities; with the flag line ends are written as "&#xd;" and "&#xa;" too, so that a reader cannot
    /// normalise them.
    static std::string EncodeXML(const std::string& text, bool encodeLineEnds);
    /// With true: & > < ' " tab, line feed and carriage return become entities, nothing else changes. With false only
    /// & > < do, and the table stays cut so for the rest of the process, since it is one table for all; this is meant.
    /// Packet code passes true.
    static std::string EncodeXmlData(const std::string& text, bool whole);
    /// EncodeXmlData(text, true), appended: for writers that build one text from many values.
    static void AppendXmlData(std::string& out, std::string_view text);
    /// The reverse of EncodeXML and EncodeXmlData, in one pass.
    static std::string DecodeXmlData(const std::string& text);

    // HTML and web input.

    /// A line end (CR LF, or a lone LF) becomes "<br>" and a double quote "&quot;"; with the flag the text "&#x0A;"
    /// becomes "<br>" as well.
    static std::string EncodeHTML(const std::string& text, bool encodedLineEnds);
    /// "<br>" becomes a line feed again, nothing else changes.
    static std::string DecodeHTML(const std::string& text);

    /// Characters that mean something to a browser or a script become entities, and so do tab and line ends; CR LF is
    /// one line end, "&#x0A;". With the flag a blank becomes "&nbsp;".
    static std::string EncodeWebInputData(const std::string& text, bool encodeBlanks);
    /// The reverse, in one pass; "&nbsp;" becomes a blank whatever the flag.
    static std::string DecodeWebInputData(const std::string& text, bool encodeBlanks);
    static std::string EncodeWebInputAndEscapeBackSlash(const std::string& text, bool encodeBlanks);

    // JSON and backslashes.

    /// For the inside of a JSON string: backslash, double quote, line feed, carriage return and tab.
    static std::string EscapeJsonString(const std::string& text);
    static std::string UnescapeJsonString(const std::string& text);
    /// For the inside of a JSON string that stands in a JSON string: escaped twice.
    static std::string EscapeInternalJSON(const std::string& text);
    /// "<" and ">" as "\u003c" and "\u003e", so that JSON may stand in a web page.
    static std::string EncodeUnicodeCharacters(const std::string& text);
    /// Each backslash doubled; and the reverse.
    static std::string EscapeBackslash(const std::string& text);
    static std::string UnescapeBackslash(const std::string& text);

    // Line ends and the rest.

    /// Each CR LF becomes one mark, the Unicode line separator U+2028, for storage in one line; lone ones stay.
    static std::string EncodeMultiLineData(const std::string& text);
    static std::string DecodeMultiLineData(const std::string& text);
    /// Each CR LF becomes "<br>".
    static std::string EncodeNewLineCharacters(const std::string& text);
    /// For a speech engine: without quote characters and line ends. A line end between two words leaves a blank, lest
    /// they be spoken as one.
    static std::string EscapeTTSData(const std::string& text);
    /// For a filter term of a database query: "\" in front of each "_" and "\".
    static std::string EncodeDBFilterInput(const std::string& text);
};
