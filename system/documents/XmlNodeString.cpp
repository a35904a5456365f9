#include "XmlReaderWriter.h"

#include <cstdio>
#include <cstdlib>
#include <strings.h>

#include "XmlTree.h"

namespace {

constexpr char kWriteFailed[] = "Unwanted exception at node string assignment.";
constexpr char kNumberWriteFailed[] = "Unwanted exception at node int assignment.";

} // namespace

XmlReaderWriter::NodeString::NodeString(XmlReaderWriter* document, pugi::xml_node_struct* element, Part part)
    : m_eSource(Element), m_pobjElement(element), m_ePart(part), m_pobjDocument(document)
{
    const pugi::xml_node node(element);
    const pugi::xml_node contents = vk::ContentsOf(node);
    if (part == Name)
        m_szRaw = node.name();
    else if (contents)
        m_szRaw = contents.value();
    if (m_szRaw)
        m_strText = m_szRaw;
}

XmlReaderWriter::NodeString::NodeString(XmlReaderWriter* document, pugi::xml_node_struct* element,
                                        pugi::xml_attribute_struct* attribute, Part part)
    : m_eSource(Attribute), m_pobjElement(element), m_pobjAttribute(attribute), m_ePart(part), m_pobjDocument(document)
{
    const pugi::xml_attribute handle(attribute);
    m_szRaw = part == Name ? handle.name() : handle.value();
    m_strText = m_szRaw;
}

/// The raw text, an empty one for an element without contents.
const char* XmlReaderWriter::NodeString::Raw() const
{
    if (!m_pobjElement)
        throw NodeException("NULL node string.");
    return m_szRaw ? m_szRaw : "";
}

XmlReaderWriter::NodeString::operator bool() const
{
    const char* text = Raw();
    return *text != '\0' && strcasecmp(text, "false") != 0 && strcasecmp(text, "0") != 0 && strcasecmp(text, "no") != 0;
}

XmlReaderWriter::NodeString::operator long() const { return std::strtol(Raw(), nullptr, 10); }
XmlReaderWriter::NodeString::operator int() const { return static_cast<int>(std::strtol(Raw(), nullptr, 10)); }

XmlReaderWriter::NodeString::operator unsigned int() const
{
    return static_cast<unsigned int>(std::strtoul(Raw(), nullptr, 10));
}

XmlReaderWriter::NodeString::operator unsigned long() const { return std::strtoul(Raw(), nullptr, 10); }
XmlReaderWriter::NodeString::operator double() const { return std::strtod(Raw(), nullptr); }
XmlReaderWriter::NodeString::operator float() const { return static_cast<float>(std::strtod(Raw(), nullptr)); }

XmlReaderWriter::NodeString::operator char*() const
{
    Raw();
    return const_cast<char*>(m_strText.c_str());
}

XmlReaderWriter::NodeString::operator std::string() const
{
    Raw();
    return m_strText;
}

bool XmlReaderWriter::NodeString::operator==(const std::string& text) const { return Raw() == text; }
bool XmlReaderWriter::NodeString::operator==(const char* text) const { return text && std::string_view(Raw()) == text; }

/// False when the document cannot take the text.
bool XmlReaderWriter::NodeString::WriteThrough(const char* text)
{
    Raw();
    if (m_pobjDocument && m_pobjDocument->m_pobjTree)
        m_pobjDocument->m_pobjTree->Changed();
    pugi::xml_node element(m_pobjElement);
    pugi::xml_attribute attribute(m_pobjAttribute);
    bool written = false;
    if (m_eSource == Element)
        written = m_ePart == Name ? element.set_name(text) : vk::SetContents(element, text);
    else
        written = m_ePart == Name ? attribute.set_name(text) : attribute.set_value(text);
    if (!written)
        return false;
    *this = m_eSource == Element ? NodeString(m_pobjDocument, m_pobjElement, m_ePart)
                                 : NodeString(m_pobjDocument, m_pobjElement, m_pobjAttribute, m_ePart);
    return true;
}

XmlReaderWriter::NodeString& XmlReaderWriter::NodeString::operator=(const std::string& text)
{
    if (!WriteThrough(text.c_str()))
        throw NodeException(kWriteFailed);
    return *this;
}

XmlReaderWriter::NodeString& XmlReaderWriter::NodeString::operator=(const char* text)
{
    if (!text)
        throw NodeException("NULL assignment to node string Lvalue.");
    if (!WriteThrough(text))
        throw NodeException(kWriteFailed);
    return *this;
}

template <class Number>
XmlReaderWriter::NodeString& XmlReaderWriter::NodeString::WriteFormatted(const char* format, Number value)
{
    char text[400]; // the longest double has 309 digits before its point
    std::snprintf(text, sizeof text, format, value);
    if (!WriteThrough(text))
        throw NodeException(kNumberWriteFailed);
    return *this;
}

using NodeString = XmlReaderWriter::NodeString;

NodeString& NodeString::operator=(int value) { return WriteFormatted("%d", value); }
NodeString& NodeString::operator=(long value) { return WriteFormatted("%ld", value); }
NodeString& NodeString::operator=(unsigned long value) { return WriteFormatted("%lu", value); }
NodeString& NodeString::operator=(double value) { return WriteFormatted("%f", value); }
NodeString& NodeString::operator=(float value) { return WriteFormatted("%f", static_cast<double>(value)); }
NodeString& NodeString::operator=(bool value) { return *this = value ? "true" : "false"; }

NodeString& NodeString::operator=(unsigned int value)
{
    return WriteFormatted("%hu", static_cast<unsigned short>(value));
}
