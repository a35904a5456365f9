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
/// one of more than 8 MiB, of more than 256 levels or of more than 524,288 elements and attributes.
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

    /// What the integer of the constructor and of open says, as bits.
    enum OpenFlag {
        OpenNow = 1,
        CreateFile = 2,   ///< mode "w+" in place of "r+"
        TruncateFile = 4, ///< to length 0, after opening
        MutableDocument = 8,
        LockShared = 16,        ///< right after opening, waiting for it
        ReadDocument = 32,      ///< the constructor reads the file
        UnlockAfterReading = 64 ///< the constructor gives the lock up
    };

    XmlReaderWriter();

    /// On a file, doing what the flags say; isFileOpened and isDocumentPresent tell what came of it. Does not throw.
    XmlReaderWriter(const std::string& path, int flags);

    /// Gives up lock and file.
    ~XmlReaderWriter();
    XmlReaderWriter(const XmlReaderWriter&) = delete;
    XmlReaderWriter& operator=(const XmlReaderWriter&) = delete;

    // The file operations answer false on a failure of the file; none of them throws.
    bool open(int flags);
    bool open(bool create, bool makeMutable);
    bool close();

    /// Replaces the document by the one in the open file, read in the encoding that it declares. False when there is
    /// no open file or the document is refused; then there is no document and parseError() tells why.
    bool read();

    /// Writes the document over the file of that path; without a path over the open file, which is closed with it.
    bool write(const std::string& path);

    bool lock(bool shared, bool wait); ///< advisory, on the open file; true when it is held already
    bool unlock();

    /// Whether someone else's lock stands in the way of such a lock. True as well while this object holds one.
    bool isFileLocked(bool shared);

    void setXmlDocumentFile(const std::string& path); ///< for the next open; gives up a file that is open
    void resetDocument(bool tree, bool file);         ///< drops the document, gives up the file
    bool isFileOpened() const { return m_bFileOpened; }
    bool isFileLoaded() const { return m_bFileOpened; }

    /// Replaces the document by the one in memory, read as UTF-8 whatever its declaration says. False when it is
    /// refused; then there is no document and parseError() tells why.
    bool readFrom(char* buffer, unsigned int size);
    bool readFrom(std::string_view text);

    /// Line and cause of the last refusal, for a log.
    const std::string& parseError() const { return m_strParseError; }

    /// Writes the whole document, declaration first. False, and nothing written, without a document.
    bool toString(std::string& text) const;

    bool createDocument();                        ///< an empty document in place of any other
    Node createRootNode(const std::string& name); ///< the only root; makes the document when there is none
    Node getRootNode(); ///< throws NodeException without a document; a null node without a root
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
    static std::string encodeSpecialChar(const char* text)
    {
        return text ? encodeSpecialChar(std::string_view(text)) : "";
    }

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

    bool Fill(std::string_view text, bool asDeclared);

    std::shared_ptr<vk::XmlTree> m_pobjTree; ///< shared by Node::shareWith alone
    bool m_bMutable = false;
    std::unique_ptr<VKioFile> m_pobjFile;
    std::string m_strPath;
    bool m_bFileOpened = false;
    bool m_bFileLocked = false;
    std::string m_strParseError;
};

#include "XmlNode.h"
#include "XmlNodeException.h"
#include "XmlNodeString.h"
