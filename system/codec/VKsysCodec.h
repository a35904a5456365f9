#pragma once

#include <string>
#include <string_view>

/// Text transformations: Base64, URL, XML, HTML, JSON, file names, web input. Stateless but for the one XML table (see
/// EncodeXmlData); every operation is class-wide and may be called from any thread. Strings may hold zero bytes. An
/// empty input gives an empty result.
class VKsysCodec
{
public:
    virtual ~VKsysCodec() = default;

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
};
