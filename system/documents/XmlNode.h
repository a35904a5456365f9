#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "XmlNodeString.h"
#include "XmlReaderWriter.h"

/// A cursor on one element of a document. A value: copies are cheap and independent, none owns the element, and all
/// of them are good as long as the document holds the element. A dummy node has an element of its own that stands in
/// no tree: it tells its name and contents, and every operation on the tree throws.
///
/// Whatever is not there is a NodeException, except in the presence tests. On a mutable document a look-up by name
/// with operator[] or attributeValue(name) adds what is missing, on purpose; isChild and isAttribute only look.
class XmlReaderWriter::Node
{
public:
    Node() = default; ///< stands for nothing
    Node(XmlReaderWriter* document, pugi::xml_node_struct* element);

    /// A node of a detached element.
    static Node getDummyNode(const std::string& name, const std::string& value = "");

    Node operator[](std::string_view name);
    Node operator[](unsigned int index) { return getChildNode(static_cast<int>(index)); }

    Node getChildNode(int index);                        ///< moves the child cursor
    Node getChildNode(std::string_view name, int index); ///< the index counts namesakes only
    Node childNode();                                    ///< at the child cursor, or the first child
    bool nextChildNode();                                ///< false past the last; then begins anew
    bool nextAttribute();                                ///< false past the last; then begins anew
    Node parentNode() const;
    Node rightSibling(std::string_view name = {}) const;
    Node leftSibling(std::string_view name = {}) const;

    NodeString name() const;
    NodeString value() const;
    NodeString attributeName(int index) const;
    NodeString attributeName() const; ///< at the attribute cursor, or of the first attribute
    NodeString attributeValue(int index) const;
    NodeString attributeValue() const; ///< at the attribute cursor, or of the first attribute
    NodeString attributeValue(std::string_view name) const;

    Node addChild(const std::string& name, const std::string& value = "");
    bool addAttribute(const std::string& name, const std::string& value); ///< false when the name is there already

    // Deletions answer whether something was deleted. A node of what is deleted must not be used any more.
    bool delChild(int index);
    bool delChild(std::string_view name);
    bool delChild(std::string_view name, std::string_view value);
    bool delSameChildren(std::string_view name);
    bool delAllChildren();
    bool delAttribute(std::string_view name);
    bool delAttribute(std::string_view name, std::string_view value);
    bool delAllAttributes();

    bool isChild(std::string_view name) const;
    bool hasChild() const;
    bool isAttribute(std::string_view name) const;
    bool isValue(std::string_view value) const;
    bool isChildValue(std::string_view name, std::string_view value) const;
    bool isAttributeValue(std::string_view name, std::string_view value) const;
    bool isRightSibling(std::string_view name = {}) const;
    bool isLeftSibling(std::string_view name = {}) const;
    bool hasValue() const;     ///< whether the element has contents, if only empty ones that were given to it
    bool isParentNode() const; ///< meant: whether the element has a parent
    bool isDummy() const { return m_bDummy; }
    bool isNull() const { return m_pobjElement == nullptr; }

    int getChildrenCount() const;
    int getSameChildrenCount(std::string_view name) const;
    int getAttributeCount() const;

    bool operator==(const std::string& name) const;
    bool operator==(const char* name) const;
    bool operator==(const Node& other) const; ///< name, contents and attributes; children are not looked at

    /// The element as the document writes it, with its children.
    std::string toString() const;

    /// The bytes from which the element was parsed, tags included, exactly as they were received. What toString gives
    /// when the document was not parsed from memory, or was changed since.
    std::string sourceText() const;

    /// Gives another object a part in the document, in place of any that it had, and answers the node as one of that
    /// object. Both then hold the same elements, as long as one of them lives, and each sees what the other changes; two
    /// threads may read them at once.
    Node shareWith(XmlReaderWriter& holder) const;

    // Reading without copies, for whoever reads many. The views are good until the document changes.
    std::string_view nameText() const;                           ///< empty for a null node
    std::string_view contentsText() const;                       ///< empty when there are none
    std::string_view attributeText(std::string_view name) const; ///< throws when missing; never adds
    Node findChild(std::string_view name) const;                 ///< a null node when missing; never adds
    Node firstChild() const;                                     ///< a null node when there is none
    Node nextSibling() const;                                    ///< a null node behind the last

private:
    struct Detached;

    void NeedTree() const;
    void Changed() const;
    NodeString AttributeString(pugi::xml_attribute_struct* attribute, int part, const char* missing) const;
    pugi::xml_attribute_struct* CursorAttribute() const;
    template <class Test> bool DeleteChildren(int most, Test&& picked);
    bool DeleteAttribute(std::string_view name, const std::string_view* value);
    Node At(pugi::xml_node_struct* element) const { return Node(m_pobjDocument, element); }

    XmlReaderWriter* m_pobjDocument = nullptr;
    pugi::xml_node_struct* m_pobjElement = nullptr;
    bool m_bDummy = false;
    pugi::xml_node_struct* m_pobjChildCursor = nullptr;
    pugi::xml_attribute_struct* m_pobjAttributeCursor = nullptr;
    std::shared_ptr<Detached> m_pobjDetached; ///< a dummy's element, shared by its copies
};
