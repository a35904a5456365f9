#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "XmlReaderWriter.h"

namespace {

using Node = XmlReaderWriter::Node;
using NodeString = XmlReaderWriter::NodeString;
using NodeException = XmlReaderWriter::NodeException;

std::string MessageOf(const std::function<void()>& misuse)
{
    try {
        misuse();
    } catch (const NodeException& exception) {
        return exception.getMessage();
    }
    return "nothing was thrown";
}

class XmlNode : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(document.readFrom("<root k='v' n='12'><a>1</a><b/><a>2</a><c><d>deep</d></c></root>"));
        root = document.getRootNode();
    }

    XmlReaderWriter document;
    Node root;
};

TEST_F(XmlNode, MisuseIsNamed)
{
    Node a = root["a"];
    Node last = root["c"];
    EXPECT_EQ(MessageOf([&] { root["x"]; }), "Unable to find child node 'x'.");
    EXPECT_EQ(MessageOf([&] { root[4]; }), "Unable to find child node.");
    EXPECT_EQ(MessageOf([&] { root.getChildNode(-1); }), "Unable to find child node.");
    EXPECT_EQ(MessageOf([&] { root.getChildNode("a", 2); }), "Unable to find child node.");
    EXPECT_EQ(MessageOf([&] { a.childNode(); }), "NULL child node.");
    EXPECT_EQ(MessageOf([&] { root.parentNode(); }), "Root node, NULL parent.");
    EXPECT_EQ(MessageOf([&] { last.rightSibling(); }), "Last node, NULL next sibling.");
    EXPECT_EQ(MessageOf([&] { a.rightSibling("x"); }), "NULL next sibling with given name.");
    EXPECT_EQ(MessageOf([&] { a.leftSibling(); }), "First node, NULL previous sibling.");
    EXPECT_EQ(MessageOf([&] { last.leftSibling("x"); }), "NULL previous sibling with given name.");
    EXPECT_EQ(MessageOf([&] { Node().name(); }), "NULL node or node name.");
    EXPECT_EQ(MessageOf([&] { root.attributeName(2); }), "No attribute at given index.");
    EXPECT_EQ(MessageOf([&] { root.attributeValue(-1); }), "No attribute at given index.");
    EXPECT_EQ(MessageOf([&] { a.attributeName(); }), "No attribute.");
    EXPECT_EQ(MessageOf([&] { a.attributeValue(); }), "No attribute.");
    EXPECT_EQ(MessageOf([&] { a.attributeValue("x"); }), "No attribute by given name.");
    EXPECT_EQ(MessageOf([&] { a.addChild("", "x"); }), "Unable to add new node.");
    EXPECT_EQ(MessageOf([&] { root.delChild(4); }), "Child node index out of bound.");
    EXPECT_EQ(MessageOf([] { static_cast<void>(static_cast<int>(NodeString())); }), "NULL node string.");
    EXPECT_EQ(MessageOf([&] { a.value() = static_cast<const char*>(nullptr); }),
              "NULL assignment to node string Lvalue.");
    EXPECT_EQ(NodeException().getMessage(), "Some error occurred.");
    EXPECT_EQ(NodeException("%s", std::string(5000, 'x').c_str()).getMessage(), std::string(2047, 'x'));
}

TEST_F(XmlNode, DummyStandsInNoTree)
{
    Node dummy = Node::getDummyNode("name", "va<lue");
    const Node copy = dummy;
    dummy = root;
    EXPECT_EQ(copy.name().str(), "name");
    EXPECT_EQ(copy.value().str(), "va<lue");
    EXPECT_EQ(copy.toString(), "<name>va&lt;lue</name>\n");
    EXPECT_FALSE(copy.isParentNode());
    dummy = copy;
    EXPECT_EQ(MessageOf([&] { dummy["x"]; }), "Not an actual node in the XML tree.");
    EXPECT_EQ(MessageOf([&] { dummy.addChild("x", ""); }), "Not an actual node in the XML tree.");
    EXPECT_EQ(MessageOf([&] { dummy.delAllAttributes(); }), "Not an actual node in the XML tree.");
    EXPECT_EQ(MessageOf([&] { Node().nextChildNode(); }), "Not an actual node in the XML tree.");
}

TEST_F(XmlNode, MovesByIndexCursorAndSibling)
{
    EXPECT_TRUE(root.childNode() == "a");
    EXPECT_EQ(root[1].name().str(), "b");
    EXPECT_TRUE(root.childNode() == "b") << "an index moves the cursor";
    EXPECT_TRUE(root.nextChildNode());
    EXPECT_EQ(root.childNode().value().str(), "2");
    EXPECT_TRUE(root.nextChildNode());
    EXPECT_FALSE(root.nextChildNode());
    EXPECT_TRUE(root.nextChildNode()) << "after the last it begins anew";
    EXPECT_EQ(root.getChildNode("a", 1).value().str(), "2");
    EXPECT_EQ(root["a"].rightSibling("a").value().str(), "2");
    EXPECT_TRUE(root["c"].leftSibling() == root["a"].rightSibling("a"));
    EXPECT_TRUE(root["c"]["d"].parentNode().parentNode() == "root");
    EXPECT_EQ(root.attributeName().str(), "k");
    EXPECT_TRUE(root.nextAttribute());
    EXPECT_TRUE(root.nextAttribute());
    EXPECT_EQ(root.attributeValue().str(), "12");
    EXPECT_FALSE(root.nextAttribute());
}

TEST_F(XmlNode, PresenceTestsOnlyLook)
{
    document.setMutable(true);
    EXPECT_TRUE(root.isChild("b") && root.hasChild() && root.isAttribute("k") && root["a"].isValue("1"));
    EXPECT_TRUE(root.isChildValue("a", "1") && root.isAttributeValue("n", "12") && root["b"].isRightSibling("a"));
    EXPECT_TRUE(root["b"].isLeftSibling("a") && root["a"].hasValue() && root["a"].isParentNode());
    EXPECT_FALSE(root.isChild("x") || root["b"].hasChild() || root.isAttribute("x") || root.isValue("1"));
    EXPECT_FALSE(root.isChildValue("a", "2") || root.isAttributeValue("k", "w") || root.isChildValue("x", ""));
    EXPECT_FALSE(root["b"].isRightSibling("b") || root["a"].isLeftSibling() || root.hasValue() || root.isParentNode());
    EXPECT_EQ(root.getChildrenCount(), 4);
    EXPECT_EQ(root.getSameChildrenCount("a"), 2);
    EXPECT_EQ(root.getAttributeCount(), 2);
}

TEST_F(XmlNode, MutableDocumentGrowsOnLookUp)
{
    document.setMutable(true);
    root["b"]["new"];
    EXPECT_TRUE(root.childNode() == "a");
    root["newer"].attributeValue("x");
    EXPECT_TRUE(root.childNode() == "newer");
    EXPECT_EQ(root["b"].toString(), "<b>\n  <new></new>\n</b>\n");
    EXPECT_EQ(root["newer"].toString(), "<newer x=\"\"></newer>\n");
}

TEST_F(XmlNode, DeletesWhatIsNamed)
{
    EXPECT_FALSE(root.delChild("a", "3"));
    EXPECT_TRUE(root.delChild("a", "2"));
    EXPECT_TRUE(root.delChild(1));
    EXPECT_FALSE(root.delChild("b"));
    EXPECT_FALSE(root.delAttribute("k", "x"));
    EXPECT_TRUE(root.delAttribute("k", "v"));
    EXPECT_EQ(root.toString(), "<root n=\"12\">\n  <a>1</a>\n  <c>\n    <d>deep</d>\n  </c>\n</root>\n");
    root.addChild("a", "9");
    EXPECT_TRUE(root.delSameChildren("a"));
    EXPECT_TRUE(root.delAllChildren() && root.delAllAttributes());
    EXPECT_FALSE(root.delAllChildren() || root.delAllAttributes());
    EXPECT_EQ(root.toString(), "<root>\n</root>\n") << "a root is never closed in its own tag";
}

TEST_F(XmlNode, EqualityLooksAtNameContentsAndAttributes)
{
    const auto same = [](const char* left, const char* right) {
        XmlReaderWriter one, other;
        return one.readFrom(left) && other.readFrom(right) && one.getRootNode() == other.getRootNode();
    };
    EXPECT_TRUE(same("<a x='1' y='2'>t</a>", "<a y='2' x='1'>t<b/></a>"));
    EXPECT_FALSE(same("<a x='1'/>", "<a x='1' y='2'/>"));
    EXPECT_FALSE(same("<a x='1'/>", "<a z='1'/>"));
    EXPECT_FALSE(same("<a>t</a>", "<a>u</a>"));
    EXPECT_FALSE(same("<a/>", "<b/>"));
}

TEST_F(XmlNode, TextsAreReadAsTypedValues)
{
    ASSERT_TRUE(document.readFrom("<r a='-12x' b='No' c='2.5e1' d='4294967295' e='' f='abc'/>"));
    Node node = document.getRootNode();
    EXPECT_TRUE(node.attributeValue("a") == -12);
    EXPECT_TRUE(node.attributeValue("a") == -12L && node.attributeValue("a") == "-12x");
    EXPECT_TRUE(node.attributeValue("a") != 12 && node.attributeValue("a") != "-12");
    EXPECT_FALSE(static_cast<bool>(node.attributeValue("b")) || static_cast<bool>(node.attributeValue("e")));
    EXPECT_TRUE(node.attributeValue("f") == true && node.attributeValue("f") == 0);
    EXPECT_TRUE(node.attributeValue("c") == 25.0 && node.attributeValue("c") == 25.0f);
    EXPECT_EQ(static_cast<unsigned int>(node.attributeValue("d")), 4294967295u);
    EXPECT_EQ(static_cast<unsigned long>(node.attributeValue("d")), 4294967295ul);
    const std::string copied = node.attributeValue("f");
    EXPECT_EQ(copied, "abc");
    EXPECT_STREQ(node.attributeValue("f"), "abc");
}

TEST_F(XmlNode, AssignmentWritesThrough)
{
    Node a = root["a"];
    a.name() = "renamed";
    a.value() = std::string("<1>");
    root.attributeName(0) = "key";
    root.attributeValue(0) = "a'b";
    EXPECT_EQ(a.toString(), "<renamed>&lt;1&gt;</renamed>\n");
    EXPECT_EQ(root.attributeText("key"), "a'b");

    const auto written = [&](auto value) { return (a.value() = value).str(); };
    EXPECT_EQ(written(70000u), "4464") << "unsigned numbers are cut to 16 bits";
    EXPECT_EQ(written(-70000), "-70000");
    EXPECT_EQ(written(1L << 40), "1099511627776");
    EXPECT_EQ(written(~0ul), "18446744073709551615");
    EXPECT_EQ(written(true), "true");
    EXPECT_EQ(written(1.5), "1.500000");
    EXPECT_EQ(written(0.25f), "0.250000");
    EXPECT_EQ(written(1e308).size(), 316u);
}

} // namespace
