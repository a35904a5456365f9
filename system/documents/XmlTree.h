#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <pugixml.hpp>

/// \file
/// The kept tree of an XML document and the only parser that fills it. expat parses, strictly; pugixml's tree keeps.

namespace vk {

/// What a document may hold before it is refused. A document type declaration is refused whatever it says, and with
/// it every entity but the five of XML itself.
inline constexpr std::size_t kXmlMaxBytes = 8u << 20;
inline constexpr std::size_t kXmlMaxDepth = 256;
inline constexpr std::size_t kXmlMaxNodes = 1u << 19; ///< elements and attributes together

/// How the bytes of a text are read: as UTF-8 whatever its declaration says, or as the declaration says.
enum class XmlEncoding { Utf8, Declared };

/// One parsed or built document. An element has at most one text node, its contents, which stands before its child
/// elements. Not safe for two threads at once.
class XmlTree
{
public:
    pugi::xml_document document;
    std::string version;     ///< as declared; empty when nothing was
    bool standalone = false; ///< as declared

    /// The bytes from which this element was parsed, tags included, as long as nothing was changed in the tree;
    /// otherwise empty. Asking near the element asked for last is cheap, so that a walk over a document stays linear.
    std::string_view SourceOf(pugi::xml_node element) const;

    /// To be called before any change: the received text then no longer tells what the tree holds.
    void Changed();

private:
    friend class XmlTreeBuilder;

    /// Where an element stands in the text, in document order.
    struct Range
    {
        const pugi::xml_node_struct* element;
        std::uint32_t begin;
        std::uint32_t end;
    };

    std::string m_strText;
    std::vector<Range> m_vecRanges;
    mutable std::atomic<std::size_t> m_iLastAsked{0}; ///< where to look first; any value will do
};

/// Parses a whole text. Null when it is not well-formed, not valid UTF-8 or beyond a limit; then `why` tells line and
/// cause. Safe to call from any thread; each thread keeps one parser.
std::unique_ptr<XmlTree> ParseXmlText(std::string_view text, XmlEncoding encoding, std::string& why);

/// The contents of an element: its text node, or a null node.
inline pugi::xml_node ContentsOf(pugi::xml_node element)
{
    const pugi::xml_node first = element.first_child();
    return first.type() == pugi::node_pcdata ? first : pugi::xml_node();
}

/// Gives an element contents, also empty ones.
bool SetContents(pugi::xml_node element, const char* text);

/// First and next element among children, skipping the contents.
inline pugi::xml_node FirstElement(pugi::xml_node parent)
{
    pugi::xml_node child = parent.first_child();
    while (child && child.type() != pugi::node_element)
        child = child.next_sibling();
    return child;
}

inline pugi::xml_node NextElement(pugi::xml_node element)
{
    pugi::xml_node next = element.next_sibling();
    while (next && next.type() != pugi::node_element)
        next = next.next_sibling();
    return next;
}

pugi::xml_node FindElement(pugi::xml_node parent, std::string_view name);
pugi::xml_attribute FindAttribute(pugi::xml_node element, std::string_view name);

} // namespace vk
