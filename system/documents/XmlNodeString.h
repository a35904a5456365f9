#pragma once

#include <string>
#include <string_view>

#include "XmlReaderWriter.h"

namespace pugi {
struct xml_node_struct;
struct xml_attribute_struct;
} // namespace pugi

/// Stands for one text of a document: the name or the contents of an element, the name or the value of an attribute.
/// Reads as a typed value, and an assignment writes through to the document. Holds a copy of the text it was made
/// with; is good as long as the element is. Throws NodeException when it stands for nothing.
class XmlReaderWriter::NodeString
{
public:
    enum Source { Element = 1, Attribute = 2 };
    enum Part { Name = 1, Value = 2 };

    NodeString() = default;
    NodeString(XmlReaderWriter* document, pugi::xml_node_struct* element, Part part);
    NodeString(XmlReaderWriter* document, pugi::xml_node_struct* element, pugi::xml_attribute_struct* attribute,
               Part part);
    NodeString(const NodeString&) = default;
    NodeString& operator=(const NodeString&) & = default; ///< stands for the other's text from now on

    /// False for an empty text and for "false", "0" and "no" in any case.
    operator bool() const;
    operator long() const;
    operator int() const;
    operator unsigned int() const;
    operator unsigned long() const;
    operator double() const;
    operator float() const;
    operator char*() const; ///< the proxy's own copy: good as long as the proxy, and only to be read
    operator std::string() const;

    /// The text as it is; never throws.
    const std::string& str() const { return m_strText; }

    bool operator==(const std::string& text) const;
    bool operator==(const char* text) const;
    bool operator==(bool value) const { return operator bool() == value; }
    bool operator==(double value) const { return operator double() == value; }
    bool operator==(float value) const { return operator float() == value; }
    bool operator==(long value) const { return operator long() == value; }
    bool operator==(int value) const { return operator int() == value; }

    template <class Other> bool operator!=(const Other& other) const { return !(*this == other); }

    NodeString& operator=(const std::string& text);
    NodeString& operator=(const char* text);
    NodeString& operator=(int value);
    NodeString& operator=(long value);
    NodeString& operator=(unsigned long value);
    NodeString& operator=(unsigned int value); ///< meant: cut to 16 bits
    NodeString& operator=(bool value);
    NodeString& operator=(double value);
    NodeString& operator=(float value);

private:
    const char* Raw() const;
    bool WriteThrough(const char* text);
    template <class Number> NodeString& WriteFormatted(const char* format, Number value);

    std::string m_strText;
    Source m_eSource = Element;
    pugi::xml_node_struct* m_pobjElement = nullptr;
    pugi::xml_attribute_struct* m_pobjAttribute = nullptr;
    Part m_ePart = Value;
    const char* m_szRaw = nullptr;             ///< the document's own text; null when there is none
    XmlReaderWriter* m_pobjDocument = nullptr; ///< null for an element outside any tree
};
