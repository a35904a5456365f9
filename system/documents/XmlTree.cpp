#include "XmlTree.h"

namespace vk {

std::string_view XmlTree::SourceOf(pugi::xml_node element) const
{
    const pugi::xml_node_struct* wanted = element.internal_object();
    const std::size_t count = m_vecRanges.size();
    const auto is = [&](std::size_t at) { return at < count && m_vecRanges[at].element == wanted; };
    // Outward from the last answer: who walks a document asks for what stands near.
    const std::size_t from = m_iLastAsked.load(std::memory_order_relaxed);
    for (std::size_t away = 0; away < count; ++away) {
        const bool ahead = is(from + away);
        if (!ahead && (away > from || !is(from - away)))
            continue;
        const std::size_t at = ahead ? from + away : from - away;
        m_iLastAsked.store(at, std::memory_order_relaxed);
        const Range& range = m_vecRanges[at];
        return std::string_view(m_strText).substr(range.begin, range.end - range.begin);
    }
    return {};
}

void XmlTree::Changed()
{
    m_vecRanges.clear();
    m_strText.clear();
    m_iLastAsked = 0;
}

bool SetContents(pugi::xml_node element, const char* text)
{
    pugi::xml_node contents = ContentsOf(element);
    if (!contents)
        contents = element.prepend_child(pugi::node_pcdata);
    return contents.set_value(text);
}

pugi::xml_node FindElement(pugi::xml_node parent, std::string_view name)
{
    pugi::xml_node child = FirstElement(parent);
    while (child && name != child.name())
        child = NextElement(child);
    return child;
}

pugi::xml_attribute FindAttribute(pugi::xml_node element, std::string_view name)
{
    pugi::xml_attribute attribute = element.first_attribute();
    while (attribute && name != attribute.name())
        attribute = attribute.next_attribute();
    return attribute;
}

} // namespace vk
