#include "XmlReaderWriter.h"

#include "XmlTree.h"

using Node = XmlReaderWriter::Node;

Node Node::addChild(const std::string& name, const std::string& value)
{
    NeedTree();
    Changed();
    pugi::xml_node child = name.empty() ? pugi::xml_node() : pugi::xml_node(m_pobjElement).append_child(name.c_str());
    if (!child || !vk::SetContents(child, value.c_str()))
        throw NodeException("Unable to add new node.");
    return At(child.internal_object());
}

bool Node::addAttribute(const std::string& name, const std::string& value)
{
    NeedTree();
    if (name.empty() || isAttribute(name))
        return false;
    Changed();
    return pugi::xml_node(m_pobjElement).append_attribute(name.c_str()).set_value(value.c_str());
}

/// Deletes the first `most` children that the test picks.
template <class Test> bool Node::DeleteChildren(int most, Test&& picked)
{
    NeedTree();
    pugi::xml_node parent(m_pobjElement);
    int deleted = 0;
    for (pugi::xml_node child = vk::FirstElement(parent); child && deleted < most;) {
        const pugi::xml_node next = vk::NextElement(child);
        if (picked(child)) {
            Changed();
            if (child.internal_object() == m_pobjChildCursor)
                m_pobjChildCursor = nullptr;
            parent.remove_child(child);
            ++deleted;
        }
        child = next;
    }
    return deleted > 0;
}

bool Node::delChild(int index)
{
    if (!DeleteChildren(1, [&](pugi::xml_node) { return index-- == 0; }))
        throw NodeException("Child node index out of bound.");
    return true;
}

bool Node::delChild(std::string_view name)
{
    return DeleteChildren(1, [&](pugi::xml_node child) { return name == child.name(); });
}

bool Node::delChild(std::string_view name, std::string_view value)
{
    return DeleteChildren(
        1, [&](pugi::xml_node child) { return name == child.name() && value == vk::ContentsOf(child).value(); });
}

bool Node::delSameChildren(std::string_view name)
{
    return DeleteChildren(getChildrenCount(), [&](pugi::xml_node child) { return name == child.name(); });
}

bool Node::delAllChildren()
{
    return DeleteChildren(getChildrenCount(), [](pugi::xml_node) { return true; });
}

bool Node::DeleteAttribute(std::string_view name, const std::string_view* value)
{
    NeedTree();
    pugi::xml_node element(m_pobjElement);
    const pugi::xml_attribute attribute = vk::FindAttribute(element, name);
    if (!attribute || (value && *value != attribute.value()))
        return false;
    Changed();
    if (attribute.internal_object() == m_pobjAttributeCursor)
        m_pobjAttributeCursor = nullptr;
    return element.remove_attribute(attribute);
}

bool Node::delAttribute(std::string_view name) { return DeleteAttribute(name, nullptr); }
bool Node::delAttribute(std::string_view name, std::string_view value) { return DeleteAttribute(name, &value); }

bool Node::delAllAttributes()
{
    NeedTree();
    const bool any = getAttributeCount() > 0;
    Changed();
    m_pobjAttributeCursor = nullptr;
    return pugi::xml_node(m_pobjElement).remove_attributes() && any;
}
