#include <gtest/gtest.h>

#include <string>

#include "XmlReaderWriter.h"

namespace {

using Node = XmlReaderWriter::Node;

std::string Repeated(int times, const std::string& text)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string Nested(int levels) { return Repeated(levels, "<a>") + Repeated(levels, "</a>"); }

TEST(XmlParsing, RefusesWhatIsBrokenDangerousOrTooMuchAndTellsWhy)
{
    const char* const doctype = "document type declaration";
    const std::string bomb = "<!DOCTYPE a [<!ENTITY b 'bbbbbbbbbb'><!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;'>]>";
    const std::tuple<const char*, std::string, const char*> refused[] = {
        {"empty", "", "no element found"},
        {"open element", "<a><b></b>", "no element found"},
        {"wrong nesting", "<a><b></a></b>", "line 1: mismatched tag"},
        {"two roots", "<a/><b/>", "junk after document element"},
        {"same attribute twice", "<a x='1' x='2'/>", "duplicate attribute"},
        {"undefined entity", "<a>&nbsp;</a>", "undefined entity"},
        {"invalid UTF-8", "<a>\xC3\x28</a>", "not well-formed"},
        {"overlong UTF-8", "<a>\xC0\xAF</a>", "not well-formed"},
        {"control character", "<a>\x01</a>", "not well-formed"},
        {"cut off", "<a>\n<b>\xE2\x82", "line 2: partial character"},
        {"doctype", "<!DOCTYPE a SYSTEM 'file:///etc/passwd'><a/>", doctype},
        {"undefined entity with doctype", "<!DOCTYPE a SYSTEM 'x'><a>&b;</a>", doctype},
        {"entity bomb", bomb + "<a>&c;&c;&c;</a>", doctype},
        {"one level too many", Nested(257), "nested too deeply"},
        {"a hundred thousand levels", Nested(100000), "nested too deeply"},
        {"too many bytes", "<a>" + std::string(8u << 20, 'x') + "</a>", "more than the 8388608 allowed"},
        {"too many elements", "<a>" + Repeated(600000, "<b/>") + "</a>", "too many elements"},
    };
    for (const auto& [what, text, reason] : refused) {
        SCOPED_TRACE(what);
        XmlReaderWriter document;
        ASSERT_TRUE(document.readFrom("<before/>"));
        EXPECT_FALSE(document.readFrom(text) || document.isDocumentPresent());
        EXPECT_NE(document.parseError().find(reason), std::string::npos) << document.parseError();
        EXPECT_TRUE(document.readFrom("<after/>")) << "the next document is read as ever";
    }
}

TEST(XmlParsing, TakesWhatLiesJustWithinTheLimits)
{
    XmlReaderWriter document;
    EXPECT_TRUE(document.readFrom(Nested(256)));
    const std::string text(5'000'000, 'x');
    ASSERT_TRUE(document.readFrom("<a>" + text + "</a>"));
    EXPECT_EQ(document.getRootNode().contentsText(), text);
}

TEST(XmlParsing, ContentsKeepTheirBlanksAndMereWhiteSpaceIsNone)
{
    XmlReaderWriter document;
    ASSERT_TRUE(
        document.readFrom("<r>\n <a> x </a>\n <b> \t\r\n</b><c>1<d>in</d> 2<!-- no -->3</c><e><![CDATA[<&>]]></e>"
                          "<f>&lt;&#65;&gt;</f><g xmlns='u:v' g:h=' i '/></r>"));
    Node root = document.getRootNode();
    EXPECT_FALSE(root.hasValue());
    EXPECT_EQ(root["a"].contentsText(), " x ");
    EXPECT_FALSE(root["b"].hasValue());
    EXPECT_EQ(static_cast<int>(root["b"].value()), 0);
    EXPECT_EQ(root["c"].contentsText(), "1 23");
    EXPECT_EQ(root["c"]["d"].contentsText(), "in");
    EXPECT_EQ(root["e"].contentsText(), "<&>");
    EXPECT_EQ(root["f"].contentsText(), "<A>");
    EXPECT_EQ(root["g"].attributeText("xmlns"), "u:v");
    EXPECT_EQ(root["g"].attributeText("g:h"), " i ");
}

TEST(XmlParsing, BufferIsUtf8WhateverItsDeclarationSays)
{
    char text[] = "<?xml version='1.0' encoding='ISO-8859-1' standalone='yes'?><a>\xC3\xA9</a>";
    XmlReaderWriter document;
    ASSERT_TRUE(document.readFrom(text, sizeof text - 1)) << document.parseError();
    EXPECT_EQ(document.getRootNode().contentsText(), "\xC3\xA9");
    std::string written;
    EXPECT_TRUE(document.toString(written));
    EXPECT_EQ(written, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n\n<a>\xC3\xA9</a>\n");
    EXPECT_FALSE(document.readFrom(nullptr, 7));
}

TEST(XmlSource, GivesTheReceivedBytesOfEachElement)
{
    const std::string parameters = "<p  a = '1'>\r\n<x>&#x9;\"'</x ><y/><z\n/><!--c--></p >";
    XmlReaderWriter document;
    ASSERT_TRUE(document.readFrom("<?xml version='1.0'?>\n<r>\xC3\xA9" + parameters + "</r>\n"));
    Node root = document.getRootNode();
    Node p = root["p"];
    EXPECT_EQ(p["z"].sourceText(), "<z\n/>");
    EXPECT_EQ(p["y"].sourceText(), "<y/>");
    EXPECT_EQ(p["x"].sourceText(), "<x>&#x9;\"'</x >");
    EXPECT_EQ(p.sourceText(), parameters);
    EXPECT_EQ(root.sourceText(), "<r>\xC3\xA9" + parameters + "</r>");
}

TEST(XmlSource, HoldsInATextOfManyPieces)
{
    // Texts, tags and characters of several bytes wherever the reader may cut a large text.
    const std::string tag = "<t a='" + std::string(300000, 'v') + "\xC3\xA9'/>";
    std::string text = "<r>" + tag;
    for (int i = 0; i < 30000; ++i)
        text += "<e n='" + std::to_string(i) + "'>\xE2\x82\xAC " + std::to_string(i) + "</e>";
    text += "<e>" + std::string(200000, 'x') + "</e></r>";
    XmlReaderWriter document;
    ASSERT_TRUE(document.readFrom(text)) << document.parseError();
    const Node root = document.getRootNode();
    Node child = root.firstChild();
    EXPECT_EQ(child.sourceText(), tag);
    EXPECT_EQ(child.attributeText("a").size(), 300002u);
    int wrong = 0;
    for (int i = 0; i < 30000; ++i) {
        child = child.nextSibling();
        const std::string contents = "\xE2\x82\xAC " + std::to_string(i);
        const std::string source = "<e n='" + std::to_string(i) + "'>" + contents + "</e>";
        wrong += child.contentsText() != contents || child.sourceText() != source;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(child.nextSibling().contentsText().size(), 200000u);
    EXPECT_EQ(root.sourceText(), text);
    text[text.size() - 100] = '\0';
    EXPECT_FALSE(document.readFrom(text));
    EXPECT_FALSE(document.readFrom(text.substr(0, 150000))) << "cut in the first piece's tag";
}

TEST(XmlSource, IsWrittenAnewOnceTheDocumentHasChanged)
{
    XmlReaderWriter document;
    ASSERT_TRUE(document.readFrom("<r><p a='1'/></r>"));
    Node p = document.getRootNode()["p"];
    p.attributeValue("a") = 2;
    EXPECT_EQ(p.sourceText(), "<p a=\"2\"/>\n");
}

} // namespace
