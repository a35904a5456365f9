#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class VKioFile;

namespace pugi {
class xml_node;
class xml_attribute;
struct xml_node_struct;
struct xml_attribute_struct;
} // namespace pugi

namespace vk {
class XmlTree;
}

/// An XML document: read from a file or from memory, looked at and changed through nodes, written back. Parsing is
/// strict: a text that is not well-formed, not valid UTF-8 or has a document type declaration is refused, and so is
/// one of more than 8 MiB, of more than 256 levels or of more than 262,144 elements and attributes.
///
/// The contents of an element is all its own text, blanks at its ends included; text that is only white space is no
/// contents. Whatever is written is UTF-8.
///
/// Not safe for two threads at once. Nodes point into the document and do not outlive it.
class XmlReaderWriter
{
public:
    class Node;
    class NodeString;
    class NodeException;

    XmlReaderWriter();
    ~XmlReaderWriter();
    XmlReaderWriter(const XmlReaderWriter&) = delete;
    XmlReaderWriter& operator=(const XmlReaderWriter&) = delete;

    /// Replaces the document by the one in memory, read as UTF-8 whatever its declaration says. False when it is
    /// refused; then there is no document and parseError() tells why.
    bool readFrom(char* buffer, unsigned int size);
    bool readFrom(std::string_view text);

    /// Line and cause of the last refusal, for a log.
    const std::string& parseError() const { return m_strParseError; }

    /// Writes the whole document, declaration first. False, and nothing written, without a document.
    bool toString(std::string& text) const;

    bool createDocument();                      ///< an empty document in place of any other
    Node createRootNode(const std::string& name); ///< the only root; makes the document when there is none
    Node getRootNode();                         ///< throws NodeException without a document; a null node without a root
    void setMutable(bool growsOnLookUp) { m_bMutable = growsOnLookUp; }
    bool isMutable() const { return m_bMutable; }
    bool isDocumentPresent() const { return m_pobjTree != nullptr; }

    // A path is a list of element names from the root down. Its first name stands for the root, whatever that is
    // called; of namesakes the first is taken.
    Node getNode(const std::vector<char*>& path); ///< throws NodeException for a missing node
    Node getNode(int count, ...);                 ///< that many const char*
    bool isNode(const std::vector<char*>& path);
    bool isNode(int count, ...);
    bool createDocumentPath(const std::vector<char*>& path); ///< adds what is missing of the path
    bool createDocumentPath(int count, ...);

    /// The text with the five characters of XML written as entities. An ampersand that begins an entity stays.
    static std::string encodeSpecialChar(std::string_view text);

    /// Whether the text begins with an entity: "&" letters or digits ";", or "&#" digits ";". Meant: "&#;" is one and
    /// "&#x" never is.
    static bool isEncodedSequence(const char* text);

    void writeXmlTree(std::string& out) const;
    static void writeXmlElement(const pugi::xml_node& element, unsigned int depth, std::string& out);
    static void writeXmlAttribute(const pugi::xml_attribute& attribute, std::string& out);

private:
    friend class Node;
    friend class NodeString;

    Node NodeAt(const std::vector<const char*>& path);

    /// The node of a path; with `add` what is missing is added, otherwise the answer is a null node.
    Node Walk(const std::vector<const char*>& path, bool add);

    std::unique_ptr<vk::XmlTree> m_pobjTree;
    bool m_bMutable = false;
    std::string m_strParseError;
};

#include "XmlNode.h"
#include "XmlNodeException.h"
#include "XmlNodeString.h"
