#include "XmlReaderWriter.h"

#include "XmlTree.h"

using Node = XmlReaderWriter::Node;
using NodeString = XmlReaderWriter::NodeString;
using NodeException = XmlReaderWriter::NodeException;

/// The document around a dummy's element, which keeps the element out of any tree.
struct XmlReaderWriter::Node::Detached
{
    pugi::xml_document document;
};

namespace {

pugi::xml_node ElementAt(pugi::xml_node parent, int index)
{
    pugi::xml_node child = index < 0 ? pugi::xml_node() : vk::FirstElement(parent);
    while (child && index-- > 0)
        child = vk::NextElement(child);
    return child;
}

pugi::xml_attribute AttributeAt(pugi::xml_node element, int index)
{
    pugi::xml_attribute attribute = index < 0 ? pugi::xml_attribute() : element.first_attribute();
    while (attribute && index-- > 0)
        attribute = attribute.next_attribute();
    return attribute;
}

pugi::xml_node PreviousElement(pugi::xml_node element)
{
    pugi::xml_node previous = element.previous_sibling();
    while (previous && previous.type() != pugi::node_element)
        previous = previous.previous_sibling();
    return previous;
}

/// The next element in one direction, of that name unless the name is empty.
pugi::xml_node Sibling(pugi::xml_node element, std::string_view name, pugi::xml_node (*step)(pugi::xml_node))
{
    pugi::xml_node sibling = step(element);
    while (sibling && !name.empty() && name != sibling.name())
        sibling = step(sibling);
    return sibling;
}

std::string_view TextOf(pugi::xml_node element) { return vk::ContentsOf(element).value(); }

} // namespace

Node::Node(XmlReaderWriter* document, pugi::xml_node_struct* element) : m_pobjDocument(document), m_pobjElement(element)
{
}

Node Node::getDummyNode(const std::string& name, const std::string& value)
{
    Node dummy;
    dummy.m_bDummy = true;
    dummy.m_pobjDetached = std::make_shared<Detached>();
    pugi::xml_node element = dummy.m_pobjDetached->document.append_child(name.c_str());
    vk::SetContents(element, value.c_str());
    dummy.m_pobjElement = element.internal_object();
    return dummy;
}

void Node::NeedTree() const
{
    if (m_bDummy || !m_pobjElement)
        throw NodeException("Not an actual node in the XML tree.");
}

void Node::Changed() const { m_pobjDocument->m_pobjTree->Changed(); }

Node Node::operator[](std::string_view name)
{
    NeedTree();
    if (const pugi::xml_node child = vk::FindElement(pugi::xml_node(m_pobjElement), name))
        return At(child.internal_object());
    const std::string missing(name);
    if (!m_pobjDocument->m_bMutable)
        throw NodeException("Unable to find child node '%s'.", missing.c_str());
    Node added = addChild(missing);
    m_pobjChildCursor = added.m_pobjElement;
    return added;
}

Node Node::getChildNode(int index)
{
    NeedTree();
    const pugi::xml_node child = ElementAt(pugi::xml_node(m_pobjElement), index);
    if (!child)
        throw NodeException("Unable to find child node.");
    m_pobjChildCursor = child.internal_object();
    return At(m_pobjChildCursor);
}

Node Node::getChildNode(std::string_view name, int index)
{
    NeedTree();
    pugi::xml_node child = index < 0 ? pugi::xml_node() : vk::FindElement(pugi::xml_node(m_pobjElement), name);
    while (child && index-- > 0)
        child = Sibling(child, name, vk::NextElement);
    if (!child)
        throw NodeException("Unable to find child node.");
    return At(child.internal_object());
}

Node Node::childNode()
{
    NeedTree();
    pugi::xml_node child(m_pobjChildCursor);
    if (!child)
        child = vk::FirstElement(pugi::xml_node(m_pobjElement));
    if (!child)
        throw NodeException("NULL child node.");
    return At(child.internal_object());
}

bool Node::nextChildNode()
{
    NeedTree();
    const pugi::xml_node cursor(m_pobjChildCursor);
    const pugi::xml_node next = cursor ? vk::NextElement(cursor) : vk::FirstElement(pugi::xml_node(m_pobjElement));
    m_pobjChildCursor = next.internal_object();
    return !next.empty();
}

bool Node::nextAttribute()
{
    NeedTree();
    const pugi::xml_attribute cursor(m_pobjAttributeCursor);
    const pugi::xml_attribute next = cursor ? cursor.next_attribute() : pugi::xml_node(m_pobjElement).first_attribute();
    m_pobjAttributeCursor = next.internal_object();
    return !next.empty();
}

Node Node::parentNode() const
{
    NeedTree();
    if (!isParentNode())
        throw NodeException("Root node, NULL parent.");
    return At(pugi::xml_node(m_pobjElement).parent().internal_object());
}

Node Node::rightSibling(std::string_view name) const
{
    NeedTree();
    const pugi::xml_node sibling = Sibling(pugi::xml_node(m_pobjElement), name, vk::NextElement);
    if (!sibling)
        throw NodeException(name.empty() ? "Last node, NULL next sibling." : "NULL next sibling with given name.");
    return At(sibling.internal_object());
}

Node Node::leftSibling(std::string_view name) const
{
    NeedTree();
    const pugi::xml_node sibling = Sibling(pugi::xml_node(m_pobjElement), name, PreviousElement);
    if (!sibling)
        throw NodeException(name.empty() ? "First node, NULL previous sibling."
                                         : "NULL previous sibling with given name.");
    return At(sibling.internal_object());
}

NodeString Node::name() const
{
    if (!m_pobjElement)
        throw NodeException("NULL node or node name.");
    return NodeString(m_pobjDocument, m_pobjElement, NodeString::Name);
}

NodeString Node::value() const
{
    if (!m_pobjElement)
        throw NodeException("NULL node or node name.");
    return NodeString(m_pobjDocument, m_pobjElement, NodeString::Value);
}

NodeString Node::AttributeString(pugi::xml_attribute_struct* attribute, int part, const char* missing) const
{
    if (!attribute)
        throw NodeException("%s", missing);
    return NodeString(m_pobjDocument, m_pobjElement, attribute, static_cast<NodeString::Part>(part));
}

pugi::xml_attribute_struct* Node::CursorAttribute() const
{
    NeedTree();
    return m_pobjAttributeCursor ? m_pobjAttributeCursor
                                 : pugi::xml_node(m_pobjElement).first_attribute().internal_object();
}

NodeString Node::attributeName(int index) const
{
    NeedTree();
    return AttributeString(AttributeAt(pugi::xml_node(m_pobjElement), index).internal_object(), NodeString::Name,
                           "No attribute at given index.");
}

NodeString Node::attributeName() const { return AttributeString(CursorAttribute(), NodeString::Name, "No attribute."); }

NodeString Node::attributeValue(int index) const
{
    NeedTree();
    return AttributeString(AttributeAt(pugi::xml_node(m_pobjElement), index).internal_object(), NodeString::Value,
                           "No attribute at given index.");
}

NodeString Node::attributeValue() const
{
    return AttributeString(CursorAttribute(), NodeString::Value, "No attribute.");
}

NodeString Node::attributeValue(std::string_view name) const
{
    NeedTree();
    pugi::xml_node element(m_pobjElement);
    pugi::xml_attribute attribute = vk::FindAttribute(element, name);
    const char* failure = "No attribute by given name.";
    if (!attribute && m_pobjDocument->m_bMutable) {
        failure = "Unable to create new attribute by given name.";
        if (Node(*this).addAttribute(std::string(name), ""))
            attribute = element.last_attribute();
    }
    return AttributeString(attribute.internal_object(), NodeString::Value, failure);
}

Node Node::shareWith(XmlReaderWriter& holder) const
{
    NeedTree();
    holder.m_pobjTree = m_pobjDocument->m_pobjTree;
    return Node(&holder, m_pobjElement);
}

bool Node::isChild(std::string_view name) const { return !findChild(name).isNull(); }
bool Node::hasChild() const { return !firstChild().isNull(); }

bool Node::isAttribute(std::string_view name) const
{
    return !vk::FindAttribute(pugi::xml_node(m_pobjElement), name).empty();
}

bool Node::isValue(std::string_view value) const { return m_pobjElement && value == contentsText(); }

bool Node::isChildValue(std::string_view name, std::string_view value) const
{
    const Node child = findChild(name);
    return !child.isNull() && child.isValue(value);
}

bool Node::isAttributeValue(std::string_view name, std::string_view value) const
{
    const pugi::xml_attribute attribute = vk::FindAttribute(pugi::xml_node(m_pobjElement), name);
    return attribute && value == attribute.value();
}

bool Node::isRightSibling(std::string_view name) const
{
    return !Sibling(pugi::xml_node(m_pobjElement), name, vk::NextElement).empty();
}

bool Node::isLeftSibling(std::string_view name) const
{
    return !Sibling(pugi::xml_node(m_pobjElement), name, PreviousElement).empty();
}

bool Node::hasValue() const { return !vk::ContentsOf(pugi::xml_node(m_pobjElement)).empty(); }
bool Node::isParentNode() const { return pugi::xml_node(m_pobjElement).parent().type() == pugi::node_element; }

int Node::getChildrenCount() const
{
    NeedTree();
    int count = 0;
    for (auto child = vk::FirstElement(pugi::xml_node(m_pobjElement)); child; child = vk::NextElement(child))
        ++count;
    return count;
}

int Node::getSameChildrenCount(std::string_view name) const
{
    NeedTree();
    int count = 0;
    for (auto child = vk::FirstElement(pugi::xml_node(m_pobjElement)); child; child = vk::NextElement(child))
        count += name == child.name();
    return count;
}

int Node::getAttributeCount() const
{
    NeedTree();
    int count = 0;
    for (auto at = pugi::xml_node(m_pobjElement).first_attribute(); at; at = at.next_attribute())
        ++count;
    return count;
}

bool Node::operator==(const std::string& name) const { return nameText() == name; }
bool Node::operator==(const char* name) const { return name && nameText() == name; }

bool Node::operator==(const Node& other) const
{
    if (nameText() != other.nameText() || contentsText() != other.contentsText())
        return false;
    int surplus = 0;
    for (auto at = pugi::xml_node(other.m_pobjElement).first_attribute(); at; at = at.next_attribute())
        ++surplus;
    for (auto at = pugi::xml_node(m_pobjElement).first_attribute(); at; at = at.next_attribute(), --surplus)
        if (!other.isAttributeValue(at.name(), at.value()))
            return false;
    return surplus == 0;
}

std::string Node::toString() const
{
    std::string text;
    if (m_pobjElement)
        XmlReaderWriter::writeXmlElement(pugi::xml_node(m_pobjElement), 0, text);
    return text;
}

std::string Node::sourceText() const
{
    if (!m_bDummy && m_pobjElement) {
        const std::string_view source = m_pobjDocument->m_pobjTree->SourceOf(pugi::xml_node(m_pobjElement));
        if (!source.empty())
            return std::string(source);
    }
    return toString();
}

std::string_view Node::nameText() const { return pugi::xml_node(m_pobjElement).name(); }
std::string_view Node::contentsText() const { return TextOf(pugi::xml_node(m_pobjElement)); }

std::string_view Node::attributeText(std::string_view name) const
{
    const pugi::xml_attribute attribute = vk::FindAttribute(pugi::xml_node(m_pobjElement), name);
    if (!attribute)
        throw NodeException("No attribute by given name.");
    return attribute.value();
}

Node Node::findChild(std::string_view name) const
{
    return At(vk::FindElement(pugi::xml_node(m_pobjElement), name).internal_object());
}

Node Node::firstChild() const { return At(vk::FirstElement(pugi::xml_node(m_pobjElement)).internal_object()); }
Node Node::nextSibling() const { return At(vk::NextElement(pugi::xml_node(m_pobjElement)).internal_object()); }
