#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "XmlReaderWriter.h"

namespace {

using Node = XmlReaderWriter::Node;

TEST(XmlWriting, ShapesEachKindOfElement)
{
    XmlReaderWriter document;
    Node root = document.createRootNode("root");
    root.addAttribute("a", "<'\">");
    EXPECT_FALSE(root.addAttribute("a", "2"));
    root.addChild("empty", "");
    Node both = root.addChild("both", "text");
    both.addChild("inner", "x&y");
    root.addChild("group").addChild("leaf", "1");
    std::string text;
    ASSERT_TRUE(document.toString(text));
    EXPECT_EQ(text, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n\n"
                    "<root a=\"&lt;&apos;&quot;&gt;\">\n"
                    "  <empty></empty>\n"
                    "  <both>    <inner>x&amp;y</inner>\n"
                    "text</both>\n"
                    "  <group>    <leaf>1</leaf>\n"
                    "</group>\n"
                    "</root>\n");
    XmlReaderWriter again;
    ASSERT_TRUE(again.readFrom("<r><a> </a><b><c>1</c></b></r>"));
    EXPECT_EQ(again.getRootNode().toString(), "<r>\n  <a/>\n  <b>\n    <c>1</c>\n  </b>\n</r>\n");
    EXPECT_FALSE(XmlReaderWriter().toString(text));
}

TEST(XmlWriting, EntitiesStayAndLoneAmpersandsAreEncoded)
{
    const std::pair<const char*, const char*> table[] = {{"", ""},
                                                         {"<>'\"", "&lt;&gt;&apos;&quot;"},
                                                         {"&amp;", "&amp;"},
                                                         {"a&b", "a&amp;b"},
                                                         {"&any1;", "&any1;"},
                                                         {"&#10;", "&#10;"},
                                                         {"&#;", "&#;"},
                                                         {"&#xA;", "&amp;#xA;"},
                                                         {"&;", "&amp;;"},
                                                         {"&", "&amp;"},
                                                         {"&amp", "&amp;amp"},
                                                         {"&#1a;", "&amp;#1a;"},
                                                         {"&&lt;", "&amp;&lt;"}};
    for (const auto& [text, encoded] : table)
        EXPECT_EQ(XmlReaderWriter::encodeSpecialChar(text), encoded) << text;
    EXPECT_EQ(XmlReaderWriter::encodeSpecialChar(nullptr), "");
    EXPECT_TRUE(XmlReaderWriter::isEncodedSequence("&lt;<"));
    EXPECT_FALSE(XmlReaderWriter::isEncodedSequence("a&lt;"));
    EXPECT_FALSE(XmlReaderWriter::isEncodedSequence(nullptr));
}

TEST(XmlPaths, LeadFromTheRootWhateverItIsCalled)
{
    XmlReaderWriter document;
    EXPECT_THROW(document.getNode(1, "a"), XmlReaderWriter::NodeException);
    ASSERT_TRUE(document.readFrom("<root><a><b>first</b></a><a><b>second</b><c/></a></root>"));
    EXPECT_TRUE(document.getNode(1, "other") == "root");
    EXPECT_TRUE(document.getNode(0) == "root");
    EXPECT_EQ(document.getNode(3, "root", "a", "b").value().str(), "first");
    EXPECT_FALSE(document.isNode(3, "root", "a", "c")) << "a later namesake is out of reach";
    document.setMutable(true);
    EXPECT_THROW(document.getNode(2, "root", "x"), XmlReaderWriter::NodeException);
    EXPECT_FALSE(document.isNode(2, "root", "x")) << "and nothing was added by looking";

    std::string names[] = {"root", "x", "y"};
    const std::vector<char*> path = {names[0].data(), names[1].data(), names[2].data()};
    EXPECT_FALSE(document.isNode(path));
    EXPECT_TRUE(document.createDocumentPath(path));
    EXPECT_TRUE(document.createDocumentPath(2, "root", "x"));
    EXPECT_TRUE(document.getNode(path) == "y");
    EXPECT_EQ(document.getRootNode().getSameChildrenCount("x"), 1);
}

} // namespace
