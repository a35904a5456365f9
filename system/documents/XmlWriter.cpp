#include "XmlReaderWriter.h"

#include "XmlTree.h"

namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// `rest` stands behind the ampersand.
bool BeginsEntity(std::string_view rest)
{
    const bool number = !rest.empty() && rest.front() == '#';
    std::size_t at = number ? 1 : 0;
    const std::size_t first = at;
    while (at < rest.size() && (IsDigit(rest[at]) || (!number && IsLetter(rest[at]))))
        ++at;
    // Meant: "&#;" counts as an entity, "&;" does not.
    return at < rest.size() && rest[at] == ';' && (number || at > first);
}

void AppendEncoded(std::string& out, std::string_view text)
{
    for (std::size_t at = 0; at < text.size(); ++at) {
        switch (text[at]) {
        case '&':
            out += BeginsEntity(text.substr(at + 1)) ? "&" : "&amp;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '\'':
            out += "&apos;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += text[at];
        }
    }
}

} // namespace

bool XmlReaderWriter::isEncodedSequence(const char* text) { return text && *text == '&' && BeginsEntity(text + 1); }

std::string XmlReaderWriter::encodeSpecialChar(std::string_view text)
{
    std::string encoded;
    encoded.reserve(text.size());
    AppendEncoded(encoded, text);
    return encoded;
}

void XmlReaderWriter::writeXmlAttribute(const pugi::xml_attribute& attribute, std::string& out)
{
    out.append(" ").append(attribute.name()).append("=\"");
    AppendEncoded(out, attribute.value());
    out += '"';
}

void XmlReaderWriter::writeXmlElement(const pugi::xml_node& element, unsigned int depth, std::string& out)
{
    out.append(2 * depth, ' ').append("<").append(element.name());
    for (auto at = element.first_attribute(); at; at = at.next_attribute())
        writeXmlAttribute(at, out);

    const pugi::xml_node contents = vk::ContentsOf(element);
    const pugi::xml_node first = vk::FirstElement(element);
    if (!contents && !first && element.parent().type() == pugi::node_element) {
        out += "/>\n";
        return;
    }
    out += contents ? ">" : ">\n";
    for (pugi::xml_node child = first; child; child = vk::NextElement(child))
        writeXmlElement(child, depth + 1, out);
    if (contents)
        AppendEncoded(out, contents.value()); // meant: behind the children, on the line of the closing tag
    else
        out.append(2 * depth, ' ');
    out.append("</").append(element.name()).append(">\n");
}

void XmlReaderWriter::writeXmlTree(std::string& out) const
{
    const std::string& version = m_pobjTree->version;
    out.append("<?xml version=\"").append(version.empty() ? "1.0" : version);
    out.append("\" encoding=\"UTF-8\" standalone=\"").append(m_pobjTree->standalone ? "yes" : "no").append("\"?>\n\n");
    if (const pugi::xml_node root = vk::FirstElement(m_pobjTree->document))
        writeXmlElement(root, 0, out);
}

bool XmlReaderWriter::toString(std::string& text) const
{
    if (!m_pobjTree)
        return false;
    text.clear();
    writeXmlTree(text);
    return true;
}
