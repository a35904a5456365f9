#include <gtest/gtest.h>

#include <string>

#include "ChildProcess.h"
#include "TempDir.h"
#include "XmlReaderWriter.h"

namespace {

constexpr int kOpenRead = XmlReaderWriter::OpenNow | XmlReaderWriter::ReadDocument;

class XmlFile : public testing::Test
{
protected:
    void Put(const std::string& text) { folder.Write("document.xml", text); }
    std::string Get() { return folder.Read("document.xml"); }

    TempDir folder;
    std::string path = folder / "document.xml";
};

/// Whether another process finds the file locked.
bool LockSeenElsewhere(const std::string& path, bool shared)
{
    return ChildProcess([&] { return XmlReaderWriter(path, 0).isFileLocked(shared) ? 1 : 0; }).Wait() != 0;
}

TEST_F(XmlFile, IsReadChangedAndWrittenUnderOneLock)
{
    Put("<config><port>5222</port><long>" + std::string(500, 'x') + "</long></config>");
    XmlReaderWriter document(path, kOpenRead | XmlReaderWriter::LockShared | XmlReaderWriter::UnlockAfterReading);
    ASSERT_TRUE(document.isFileOpened() && document.isDocumentPresent());
    EXPECT_FALSE(LockSeenElsewhere(path, false)) << "the shared lock was given up after reading";
    ASSERT_TRUE(document.lock(false, true));
    EXPECT_TRUE(document.lock(false, true)) << "held already";
    EXPECT_TRUE(document.isFileLocked(true));
    EXPECT_TRUE(LockSeenElsewhere(path, true));
    ASSERT_TRUE(document.read());
    XmlReaderWriter::Node root = document.getRootNode();
    root["port"].value() = 5223;
    EXPECT_TRUE(root.delChild("long"));
    EXPECT_TRUE(document.write(""));
    EXPECT_EQ(Get(), "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n\n"
                     "<config>\n  <port>5223</port>\n</config>\n");
    EXPECT_FALSE(document.isFileOpened());
    EXPECT_FALSE(LockSeenElsewhere(path, false));
    EXPECT_FALSE(document.write("")) << "no file is open any more";
}

TEST_F(XmlFile, SharedLocksGoTogether)
{
    Put("<a/>");
    XmlReaderWriter document(path, 0);
    EXPECT_FALSE(document.lock(true, false) || document.unlock() || document.close()) << "no file is open";
    ASSERT_TRUE(document.open(XmlReaderWriter::OpenNow | XmlReaderWriter::LockShared));
    EXPECT_FALSE(document.open(false, false)) << "it is open already";
    EXPECT_FALSE(LockSeenElsewhere(path, true));
    EXPECT_TRUE(LockSeenElsewhere(path, false));
    EXPECT_TRUE(document.unlock());
    EXPECT_FALSE(LockSeenElsewhere(path, false));
    EXPECT_TRUE(document.close());
}

TEST_F(XmlFile, IsCreatedAndTruncatedAsTheFlagsSay)
{
    XmlReaderWriter document;
    document.setXmlDocumentFile(path);
    EXPECT_FALSE(document.open(false, false)) << "it is not there";
    EXPECT_TRUE(document.open(true, true));
    EXPECT_TRUE(document.isMutable());
    EXPECT_FALSE(document.read()) << "it is empty";
    EXPECT_FALSE(document.write("")) << "there is no document";
    document.createRootNode("root")["grown"];
    EXPECT_TRUE(document.write(""));
    EXPECT_NE(Get().find("<grown></grown>"), std::string::npos);
    ASSERT_TRUE(document.open(XmlReaderWriter::OpenNow | XmlReaderWriter::TruncateFile));
    EXPECT_FALSE(document.isMutable());
    EXPECT_EQ(Get(), "");
    document.resetDocument(true, true);
    EXPECT_FALSE(document.isDocumentPresent() || document.isFileOpened());
}

TEST_F(XmlFile, FailuresAreAnswersAndLeaveOtherFilesAlone)
{
    XmlReaderWriter missing(folder / "nowhere/document.xml", kOpenRead);
    EXPECT_FALSE(missing.isFileOpened() || missing.isDocumentPresent() || missing.isFileLocked(false));
    EXPECT_FALSE(missing.read());
    missing.createRootNode("root");
    EXPECT_FALSE(missing.write(folder / "nowhere/document.xml"));
    EXPECT_TRUE(missing.write(path));

    Put("<!DOCTYPE a><a/>");
    XmlReaderWriter refused(path, kOpenRead);
    EXPECT_TRUE(refused.isFileOpened());
    EXPECT_FALSE(refused.isDocumentPresent());
    EXPECT_EQ(refused.parseError(), "line 1: a document type declaration is not allowed");
    EXPECT_FALSE(refused.write(""));
    EXPECT_EQ(Get(), "<!DOCTYPE a><a/>") << "without a document nothing is overwritten";

    Put("<a>" + std::string(9u << 20, ' ') + "</a>");
    XmlReaderWriter large(path, kOpenRead);
    EXPECT_FALSE(large.isDocumentPresent());
    EXPECT_NE(large.parseError().find("more than the 8388608 allowed"), std::string::npos) << large.parseError();
}

TEST_F(XmlFile, IsReadInTheEncodingThatItDeclares)
{
    Put("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>");
    XmlReaderWriter document(path, kOpenRead);
    ASSERT_TRUE(document.isDocumentPresent()) << document.parseError();
    EXPECT_EQ(document.getRootNode().contentsText(), "\xC3\xA9");
    EXPECT_EQ(document.getRootNode().sourceText(), "<a>\xC3\xA9</a>\n");
}

} // namespace
