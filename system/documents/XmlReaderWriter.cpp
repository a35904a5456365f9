#include "XmlReaderWriter.h"

#include <cstdarg>

#include "XmlTree.h"

namespace {

std::vector<const char*> PathOf(const std::vector<char*>& names) { return {names.begin(), names.end()}; }

std::vector<const char*> PathOf(int count, va_list names)
{
    std::vector<const char*> path;
    for (int i = 0; i < count; ++i)
        path.push_back(va_arg(names, const char*));
    return path;
}

} // namespace

bool XmlReaderWriter::readFrom(char* buffer, unsigned int size)
{
    return readFrom(buffer ? std::string_view(buffer, size) : std::string_view());
}

bool XmlReaderWriter::readFrom(std::string_view text) { return Fill(text, false); }

bool XmlReaderWriter::Fill(std::string_view text, bool asDeclared)
{
    m_strParseError.clear();
    m_pobjTree.reset();
    m_pobjTree =
        vk::ParseXmlText(text, asDeclared ? vk::XmlEncoding::Declared : vk::XmlEncoding::Utf8, m_strParseError);
    return m_pobjTree != nullptr;
}

bool XmlReaderWriter::createDocument()
{
    m_pobjTree = std::make_unique<vk::XmlTree>();
    return true;
}

XmlReaderWriter::Node XmlReaderWriter::createRootNode(const std::string& name)
{
    createDocument();
    const pugi::xml_node root = name.empty() ? pugi::xml_node() : m_pobjTree->document.append_child(name.c_str());
    if (!root)
        throw NodeException("Unable to add new node.");
    return Node(this, root.internal_object());
}

XmlReaderWriter::Node XmlReaderWriter::getRootNode()
{
    if (!m_pobjTree)
        throw NodeException("NULL XML document object");
    return Node(this, vk::FirstElement(m_pobjTree->document).internal_object());
}

XmlReaderWriter::Node XmlReaderWriter::Walk(const std::vector<const char*>& path, bool add)
{
    Node node = getRootNode();
    for (std::size_t level = 1; level < path.size() && !node.isNull(); ++level) {
        const std::string_view name = path[level] ? path[level] : "";
        Node child = node.findChild(name);
        if (child.isNull() && add)
            child = node.addChild(std::string(name));
        node = child;
    }
    return node;
}

XmlReaderWriter::Node XmlReaderWriter::NodeAt(const std::vector<const char*>& path)
{
    Node node = Walk(path, false);
    if (node.isNull())
        throw NodeException("Node not present");
    return node;
}

XmlReaderWriter::Node XmlReaderWriter::getNode(const std::vector<char*>& path) { return NodeAt(PathOf(path)); }
bool XmlReaderWriter::isNode(const std::vector<char*>& path) { return !Walk(PathOf(path), false).isNull(); }

bool XmlReaderWriter::createDocumentPath(const std::vector<char*>& path) { return !Walk(PathOf(path), true).isNull(); }

XmlReaderWriter::Node XmlReaderWriter::getNode(int count, ...)
{
    va_list names;
    va_start(names, count);
    const auto path = PathOf(count, names);
    va_end(names);
    return NodeAt(path);
}

bool XmlReaderWriter::isNode(int count, ...)
{
    va_list names;
    va_start(names, count);
    const auto path = PathOf(count, names);
    va_end(names);
    return !Walk(path, false).isNull();
}

bool XmlReaderWriter::createDocumentPath(int count, ...)
{
    va_list names;
    va_start(names, count);
    const auto path = PathOf(count, names);
    va_end(names);
    return !Walk(path, true).isNull();
}
