#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ChildProcess.h"
#include "IniReaderWriter.h"
#include "LockingProcess.h"
#include "TempDir.h"
#include "VKIniReaderWriterEx.h"
#include "VKioException.h"

namespace {

const std::string kMain = "[main]";
const std::string kOther = "[other]";

class IniTest : public ::testing::Test
{
protected:
    /// A document of these lines, read from a file.
    IniReaderWriter& Load(const std::string& text)
    {
        m_dir.Write("f.ini", text);
        m_ini = std::make_unique<IniReaderWriter>(m_dir / "f.ini", true, true, false);
        EXPECT_TRUE(m_ini->isFileLoaded());
        return *m_ini;
    }
    /// What the document writes.
    std::string Written()
    {
        std::string path = m_dir / "out.ini";
        EXPECT_TRUE(m_ini->write(&path));
        return m_dir.Read("out.ini");
    }

    TempDir m_dir;
    std::unique_ptr<IniReaderWriter> m_ini;
};

TEST_F(IniTest, WhatARewriteKeepsOfEachKindOfLine)
{
    const std::string longKey(511, 'k');
    const std::tuple<const char*, std::string, std::string> table[] = {
        {"comments and order", "# top\nb=2\na=1\n[h]\n#in\nc=3\n", "# top\nb=2\na=1\n\n[h]\n#in\nc=3\n"},
        {"no blank lines", "\n \n\t\na=1\n\n\n[h]\n\n", "a=1\n\n[h]\n"},
        {"carriage returns", "a=1\r\n[h]\r\nb=2\r\n", "a=1\n\n[h]\nb=2\n"},
        {"blanks at the ends, and before =", "  a =  1  \n", "a =1\n"},
        {"the first = splits", "a=b=c\n", "a=b=c\n"},
        {"no value behind =", "a=\nb=  \n", ""},
        {"no key before =", "=1\n", ""},
        {"no =", "alone\n", "alone=\n"},
        {"no line end", "a=1", "a=1\n"},
        {"511 bytes", longKey + "\nb=1\n", longKey + "\nb=1\n"},
        {"512 bytes", longKey + "x\nb=1\n", longKey + "\nx=\nb=1\n"},
    };
    for (const auto& [what, text, written] : table) {
        Load(text);
        EXPECT_EQ(Written(), written) << what;
    }
}

TEST_F(IniTest, LongOrBrokenValuesCannotSpoilTheLinesAroundThem)
{
    IniReaderWriter& ini = Load("[main]\na=1\nb=2\n");
    ini[kMain]["a"] = std::string(600, 'v');
    ini[kMain]["b"] = "x\n[other]\r\ny";
    EXPECT_EQ(Written(), "\n[main]\na=" + std::string(509, 'v') + "\nb=x [other]  y\n");
}

TEST_F(IniTest, KeysAreFoundInTheirOwnSectionOnlyAndInAnyCase)
{
    IniReaderWriter& ini = Load("start=0\n[Main]\nKey=Value\nblank =1\n[other]\nelse=2\n[empty]\n");
    const std::string key = "KEY", elseKey = "else", start = "start", value = "VALUE", empty = "[empty]";
    EXPECT_EQ(ini.getKeyValue(&kMain, &key), "Value");
    EXPECT_EQ(ini.getKeyValue(&kMain, "key"), "Value");
    EXPECT_EQ(ini.getKeyValue(&kMain, "blank"), "");
    EXPECT_EQ(ini.getKeyValue(&kMain, "blank "), "1");
    EXPECT_EQ(ini.getKeyValue(&kMain, &elseKey), "");
    EXPECT_EQ(ini.getKeyValue(nullptr, &start), "0");
    EXPECT_EQ(ini.getKeyValue(nullptr, &key), "");
    EXPECT_TRUE(ini.isHeadPresent("[MAIN]") && !ini.isHeadPresent("main"));
    EXPECT_TRUE(ini.isKeyPresent(&kMain, &key) && !ini.isKeyPresent(&empty, &key));
    EXPECT_TRUE(ini.isValuePresent(&kMain, &key, &value) && !ini.isValuePresent(&kOther, &elseKey, &value));
    EXPECT_TRUE(ini.isValuePresentInSection("[main]", "value") && !ini.isValuePresentInSection("[main]", "2"));
}

TEST_F(IniTest, PositionsCountFromTheFirstLineBehindTheHead)
{
    IniReaderWriter& ini = Load("s=0\n[main]\na=1\n#note\nb=2\n[other]\nc=3\n");
    EXPECT_EQ(ini.getKey(&kMain, 0), "a");
    EXPECT_EQ(ini.getKeyValue(&kMain, 2), "2");
    EXPECT_EQ(ini.getKey(&kMain, 3), "");
    EXPECT_EQ(ini.getKey(&kMain, -1), "");
    EXPECT_EQ(ini.getKeyValue(nullptr, 0), "0");
    EXPECT_EQ(ini.getKey(nullptr, 1), "");

    std::string key = "kept", value = "kept";
    EXPECT_TRUE(ini.getKeyValue(&kMain, 1, key, value, IniReaderWriter::Node::KeyValue));
    EXPECT_EQ(key + value, "keptkept");
    EXPECT_TRUE(ini.getKeyValue(&kMain, 0, key, value, IniReaderWriter::Node::KeyValue));
    EXPECT_EQ(key + value, "a1");
    EXPECT_FALSE(ini.getKeyValue(&kMain, 3, key, value, IniReaderWriter::Node::KeyValue));
}

TEST_F(IniTest, NewKeysGoToTheEndOfTheirSectionAndNewHeadsBehindASection)
{
    IniReaderWriter& ini = Load("[main]\na=1\n[other]\nc=3\n");
    ini[kMain]["b"] = "2";
    ini[kMain]["A"] = "9";
    ini["[last]"]["z"] = "26";
    ini[kOther]["d"] = "4";
    EXPECT_TRUE(ini.createNewHead("[between]", "[MAIN]"));
    EXPECT_TRUE(ini.createNewHead("[end]", "[nowhere]"));
    EXPECT_FALSE(ini.createNewHead("[end]", ""));
    EXPECT_FALSE(ini.createNewHead("bare", ""));
    ini["[between]"]["m"] = "5";
    ini["[end]"]["y"] = "25";
    EXPECT_EQ(Written(), "\n[main]\na=9\nb=2\n\n[between]\nm=5\n\n[other]\nc=3\nd=4\n\n[last]\nz=26\n\n[end]\ny=25\n");

    const std::string a = "a", missing = "q", value = "7";
    EXPECT_TRUE(ini.setKeyValue(&kMain, &a, &value));
    EXPECT_FALSE(ini.setKeyValue(&kMain, &missing, &value));
    EXPECT_EQ(ini.getKeyValue(&kMain, &a), "7");
    EXPECT_FALSE(ini.isKeyPresent(&kMain, &missing));
}

TEST_F(IniTest, RemovalsLeaveAWholeListBehind)
{
    const std::string c = "c", d = "d";
    IniReaderWriter& ini = Load("[main]\na=1\n[other]\nc=3\nd=4\n[last]\nz=26\n");
    EXPECT_TRUE(ini.removeHead(kOther));
    EXPECT_EQ(ini.getKeyValue(&kMain, &c), "3");
    EXPECT_TRUE(ini.removeKey(&kMain, &c));
    EXPECT_FALSE(ini.removeKey(&kMain, &c));
    ini[kMain]["e"] = "5";
    EXPECT_EQ(Written(), "\n[main]\na=1\nd=4\ne=5\n\n[last]\nz=26\n");

    EXPECT_TRUE(ini.removeHead(kMain)); // the first line of all
    EXPECT_EQ(ini.getKeyValue(nullptr, &d), "4");
    EXPECT_TRUE(ini.removeSection("[last]"));
    EXPECT_FALSE(ini.removeSection("[last]"));
    ini["[new]"]["k"] = "v";
    EXPECT_EQ(Written(), "a=1\nd=4\ne=5\n\n[new]\nk=v\n");
    EXPECT_TRUE(ini.removeSection("[new]"));
    for (const char* key : {"a", "d", "e"}) {
        const std::string name = key;
        EXPECT_TRUE(ini.removeKey(nullptr, &name));
    }
    EXPECT_EQ(Written(), "");
    ini["[again]"]["k"] = "v";
    EXPECT_EQ(Written(), "\n[again]\nk=v\n");
}

TEST_F(IniTest, BadFilesAnswerFalseAndKeepWhatIsHeld)
{
    EXPECT_THROW(IniReaderWriter(static_cast<const char*>(nullptr), false, false, false), std::exception);
    IniReaderWriter missing(m_dir / "missing.ini", true, true, false);
    EXPECT_FALSE(missing.isFileLoaded());
    EXPECT_FALSE(IniReaderWriter(m_dir.Path().string(), true, false, false).isFileLoaded());
    std::string noPlace = m_dir / "no/such/place.ini";
    EXPECT_FALSE(missing.write(&noPlace));

    IniReaderWriter& ini = Load("a=1\n");
    vktest::LockingProcess holder(m_dir / "f.ini");
    EXPECT_FALSE(ini.read());
    EXPECT_EQ(ini.getKey(nullptr, 0), "a");
    holder.Release();
    EXPECT_TRUE(ini.read());

    std::string full = "/dev/full";
    EXPECT_FALSE(IniReaderWriter(m_dir / "f.ini", true, false, false).write(&full));
}

TEST(IniReaderWriterEx, HoldsOneLockAcrossReadChangeAndWrite)
{
    TempDir dir;
    dir.Write("f.ini", "[main]\ncount=0\nlong=" + std::string(300, 'x') + "\n");
    const auto addOften = [&] {
        for (int i = 0; i < 100; ++i) {
            VKIniReaderWriterEx ini(dir / "f.ini", true, true);
            if (!ini.open(false) || !ini.lock(false) || !ini.islocked() || !ini.read())
                return 1;
            std::string& count = ini[kMain]["count"];
            count = std::to_string(std::stoi(count) + 1);
            ini[kMain]["long"] = std::string(static_cast<std::size_t>(i % 2 ? 300 : 3), 'x');
            if (!ini.write() || !ini.unlock() || ini.islocked())
                return 2;
        }
        return 0;
    };
    ChildProcess other(addOften);
    EXPECT_EQ(addOften(), 0);
    EXPECT_EQ(other.Wait(), 0);
    EXPECT_EQ(dir.Read("f.ini"), "\n[main]\ncount=200\nlong=" + std::string(300, 'x') + "\n");
}

TEST(IniReaderWriterEx, TellsByExceptionsWhatTheFileRefuses)
{
    TempDir dir;
    VKIniReaderWriterEx ini(dir / "f.ini", false, false);
    EXPECT_FALSE(ini.read());
    EXPECT_FALSE(ini.lock(true));
    EXPECT_FALSE(ini.write());
    EXPECT_THROW(ini.open(false), VKioException);
    EXPECT_TRUE(ini.open(true));
    EXPECT_THROW(ini.open(true), VKioException);
    ini[kMain]["a"] = "1";
    EXPECT_TRUE(ini.write(""));
    EXPECT_TRUE(ini.write(dir / "copy.ini"));
    EXPECT_EQ(dir.Read("f.ini"), "\n[main]\na=1\n");
    EXPECT_EQ(dir.Read("copy.ini"), dir.Read("f.ini"));

    VKIniReaderWriterEx full("/dev/full", false, false);
    full.open(false);
    full[kMain]["a"] = "1";
    EXPECT_THROW(full.write(), VKioException);
}

} // namespace
