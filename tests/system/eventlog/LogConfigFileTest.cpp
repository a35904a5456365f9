#include <gmock/gmock.h>

#include <filesystem>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "MemoryWriter.h"
#include "SystemLogProbe.h"
#include "TempDir.h"
#include "VKsysEventLogInterface.h"
#include "VKsysEventLogSingleThreaded.h"

namespace {

using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;
using Log = VKsysEventLogInterface;

/// An installation: "config" and "logs".
class LogConfig : public ::testing::Test
{
protected:
    LogConfig()
    {
        std::filesystem::create_directory(m_root / "config");
        std::filesystem::create_directory(m_root / "logs");
    }
    std::string Dir() const { return m_root / "config"; }
    std::string Logs() const { return m_root / "logs/"; }
    std::string Ini() const { return m_root.Read("config/vklogs.ini"); }
    void SetIni(const std::string& text) const { m_root.Write("config/vklogs.ini", text); }
    std::string Section(const std::string& head, const std::string& file) const
    {
        return "\n[" + head + "]\nwriter=file\nlevel=info\nfilePath=" + Logs() + file +
               "\nbytesPerFiles=204800\nnumFiles=20\nautoAppend=1\nperProcessFile=0\n";
    }
    std::unique_ptr<Log> Create(const std::string& name, const std::string& logDir = "") const
    {
        return std::unique_ptr<Log>(Log::CreateInstance(name, Log::SINGLE_THREADED, Dir(), logDir));
    }

    TempDir m_root;
    SystemLogProbe m_syslog;
};

TEST(LogConfigPaths, AreMadeFromTheConfigurationDirectory)
{
    EXPECT_EQ(Log::getConfigFileName("/a/config"), "/a/config/vklogs.ini");
    EXPECT_EQ(Log::getConfigFileName("/a/config/"), "/a/config/vklogs.ini");
    EXPECT_EQ(Log::getConfigFileName("c:\\a\\\\b\\"), "c:\\\\a\\\\b\\\\/vklogs.ini");
    EXPECT_EQ(Log::getLogDirPath("/a/config", ""), "/a/logs/");
    EXPECT_EQ(Log::getLogDirPath("/configs/b/config/", "x y z"), "/configs/b/logs/x_y_z.txt");
    TempDir dir;
    dir.Write("logs/x.txt", "");
    dir.Write("logs/x.1.txt", "");
    EXPECT_EQ(Log::getLogDirPath(dir / "config", "x"), dir / "logs/x.2.txt");
}

TEST_F(LogConfig, AFreshInstallationGetsAWorkingFile)
{
    std::filesystem::remove(m_root / "logs");
    const auto log = Create("a core");
    ASSERT_TRUE(log) << m_syslog.Take();
    EXPECT_EQ(Ini(), "\n[main]\na core=a core_logger\n" + Section("a core_logger", "a_core.txt") +
                         Section("common", "common_logs.txt"));
    EXPECT_EQ(log->GetLogLevel(), Log::INFO);
    ASSERT_TRUE(log->Start());
    EXPECT_TRUE(log->WriteWarn("hello", 1, nullptr));
    EXPECT_NE(m_root.Read("logs/a_core.txt").find(" a core [WARN] hello\n"), std::string::npos);

    const auto other = Create("b", m_root / "elsewhere");
    ASSERT_TRUE(other) << m_syslog.Take();
    EXPECT_NE(Ini().find("filePath=" + (m_root / "elsewhere/b_log.txt") + "\n"), std::string::npos);
    EXPECT_TRUE(Log::generateConfigFile("", Dir(), "")); // completes what is there
    EXPECT_NE(Ini().find("a core=a core_logger\nb=b_logger\nsample=sample_logger\n"), std::string::npos);
    EXPECT_EQ(m_syslog.Take(), "");
}

TEST_F(LogConfig, LoggersFallBackToTheCommonSection)
{
    SetIni("[main]\nno writer=own\nno section=gone\n[own]\nlevel=fatal\n[common]\nWriter=qtdebug\nLevel=debug\n"
           "filePath=" +
           Logs() + "c.txt\nbytesPerFiles=9\nnumFiles=2\n");
    for (const char* name : {"no writer", "no section", "nobody", ""}) {
        VKsysEventLogSingleThreaded log;
        EXPECT_TRUE(log.initialize(Dir(), name)) << name;
        EXPECT_EQ(log.GetLogLevel(), Log::DEBUG) << name;
    }
    std::string section;
    std::vector<std::pair<std::string, std::string>> values;
    EXPECT_TRUE(Log::getModuleAttributeValues("nobody", section, Log::getConfigFileName(Dir()), values));
    EXPECT_EQ(section, "[common]");
    EXPECT_THAT(values,
                ElementsAre(Pair("writer", "qtdebug"), Pair("level", "debug"), Pair("filePath", Logs() + "c.txt"),
                            Pair("bytesPerFiles", "9"), Pair("numFiles", "2")));
    EXPECT_FALSE(Log::getModuleAttributeValues("x", section, m_root / "none.ini", values));
    EXPECT_TRUE(
        m_syslog.Has("VKsysEventLogInterface::getModuleLoggerWriter: Unable to load/read config/logs.ini file."));
}

TEST_F(LogConfig, SectionsThatCannotWorkAreToldToSyslog)
{
    const std::string path = "filePath=" + Logs() + "f.txt\n", unknown = "Error occurred while creating log writer.",
                      unusable = "Log writer initialization failed. Check vklogs.ini";
    const std::pair<std::string, std::string> table[] = {
        {"writer=pigeon\n", unknown},
        {"writer=sqlite\n", unknown},
        {"writer=file\n" + path + "numFiles=2\n", unusable},
        {"writer=file\n" + path + "numFiles=0\nbytesPerFiles=9\n", unusable},
        {"writer=file\nnumFiles=1\nbytesPerFiles=9\n", unusable}};
    for (const auto& [lines, text] : table) {
        SetIni("[main]\nx=own\n[own]\n" + lines);
        VKsysEventLogSingleThreaded log;
        EXPECT_FALSE(log.initialize(Dir(), "x")) << lines;
        EXPECT_EQ(log.GetWriter(), nullptr);
        EXPECT_FALSE(log.Start());
        EXPECT_TRUE(m_syslog.Has("3 " + Log::getProcessName() +
                                 "-ERROR VKsysEventLogInterface::loadWriterConfig: " + text + "\n"))
            << lines;
    }
    std::filesystem::remove(m_root / "config/vklogs.ini");
    VKsysEventLogSingleThreaded log;
    EXPECT_FALSE(log.initialize(Dir(), "x"));
    EXPECT_TRUE(m_syslog.Has("Unable to load/read config/vklogs.ini file."));
}

MemoryWriter::Store theStore;

TEST_F(LogConfig, AWriterThatAHigherFloorRegistersServesItsWord)
{
    SetIni("[main]\nx=own\n[own]\nwriter=SQLite\nlevel=odd\n");
    VKsysEventLogWriterInterface::RegisterFactory(VKsysEventLogWriterInterface::SQLITE_WRITER, [] {
        return std::unique_ptr<VKsysEventLogWriterInterface>(std::make_unique<MemoryWriter>(theStore));
    });
    VKsysEventLogSingleThreaded log;
    EXPECT_TRUE(log.initialize(Dir(), "x"));
    EXPECT_EQ(log.GetLogLevel(), Log::WARN);
    VKsysEventLogWriterInterface::RegisterFactory(VKsysEventLogWriterInterface::SQLITE_WRITER, nullptr);
    EXPECT_EQ(VKsysEventLogWriterInterface::CreateInstance(VKsysEventLogWriterInterface::SQLITE_WRITER), nullptr);
    EXPECT_EQ(VKsysEventLogWriterInterface::CreateInstance(static_cast<VKsysEventLogWriterInterface::WriterTypes>(1)),
              nullptr);
}

TEST_F(LogConfig, RepairAddsWhatIsMissingAndKeepsTheRest)
{
    const std::string kept = "# ours\n\n[mine]\nwriter=file\nlevel=trace\nfilePath=" + Logs() + "m.txt\n#x\nodd=1\n";
    SetIni(kept);
    EXPECT_TRUE(Log::checkAndRepairConfigFile("a", Dir(), ""));
    EXPECT_EQ(Ini(),
              kept + "\n[main]\na=a_logger\n" + Section("a_logger", "a.txt") + Section("common", "common_logs.txt"));
    const auto written = std::filesystem::last_write_time(m_root / "config/vklogs.ini");
    EXPECT_TRUE(Log::checkAndRepairConfigFile("a", Dir(), ""));
    EXPECT_EQ(std::filesystem::last_write_time(m_root / "config/vklogs.ini"), written);
    EXPECT_TRUE(Log::checkAndRepairConfigFile("", "/nowhere", ""));

    SetIni("[main]\na=gone\n[common]\nwriter=file\n");
    EXPECT_TRUE(Log::checkAndRepairConfigFile("a", Dir(), ""));
    EXPECT_EQ(Ini(), "\n[main]\na=gone\n\n[common]\nwriter=file\n" + Section("gone", "a.1.txt"));
}

TEST_F(LogConfig, RepairMovesAPathThatCannotBeWrittenAndKeepsOneThatCan)
{
    const std::string head = "\n[main]\na=own\n\n[own]\nwriter=file\nfilePath=", tail = "\n\n[common]\nwriter=file\n";
    std::filesystem::create_directory(m_root / "mine");
    const std::pair<std::string, std::string> table[] = {{"/moved/away/logs/old name.txt", Logs() + "old name.txt"},
                                                         {m_root / "mine/x.txt", m_root / "mine/x.txt"},
                                                         {Logs() + "x.txt", Logs() + "x.txt"}};
    for (const auto& [path, repaired] : table) {
        SetIni(head + path + tail);
        EXPECT_TRUE(Log::checkAndRepairConfigFile("a", Dir(), ""));
        EXPECT_EQ(Ini(), head + repaired + tail);
    }
}

TEST_F(LogConfig, AFileThatCannotBeReadOrKeptIsLeftAsItIs)
{
    const std::string binary("[main]\nx\0y=1\n", 13);
    SetIni(binary);
    EXPECT_EQ(Create("a"), nullptr);
    EXPECT_EQ(Ini(), binary);
    EXPECT_TRUE(m_syslog.Has("vklogs.ini is not a text file and is left as it is"));

    std::filesystem::remove(m_root / "config/vklogs.ini");
    std::filesystem::create_directory(m_root / "config/vklogs.ini");
    EXPECT_EQ(Create("a"), nullptr);
    EXPECT_TRUE(m_syslog.Has("File Open Failed"));
    EXPECT_EQ(Log::CreateInstance("a", Log::SINGLE_THREADED, m_root / "no/config", ""), nullptr);
    EXPECT_TRUE(m_syslog.Has("Cannot create " + (m_root / "no/config/vklogs.ini")));
    for (const char* name : {"a=b", "#a", "[a]", " a", "a\nb"}) {
        EXPECT_EQ(Create(name), nullptr) << name;
        EXPECT_TRUE(m_syslog.Has("cannot be the name of a logger")) << name;
    }
}

TEST_F(LogConfig, ProcessesThatRepairAtOnceLoseNoEntry)
{
    for (int round = 0; round < 10; ++round) {
        std::filesystem::remove(m_root / "config/vklogs.ini");
        {
            std::list<ChildProcess> children;
            for (const char* name : {"a", "b", "c"})
                children.emplace_back([&, name] { return Log::checkAndRepairConfigFile(name, Dir(), "") ? 0 : 1; });
            for (ChildProcess& child : children)
                EXPECT_EQ(child.Wait(), 0);
        }
        for (const char* name : {"a", "b", "c"}) {
            VKsysEventLogSingleThreaded log;
            EXPECT_TRUE(log.initialize(Dir(), name)) << Ini();
            EXPECT_NE(Ini().find(std::string(name) + "=" + name + "_logger\n"), std::string::npos) << Ini();
        }
        EXPECT_EQ(Ini().find("[common]"), Ini().rfind("[common]"));
    }
}

TEST_F(LogConfig, LoggersAreAddedRenamedAndRemoved)
{
    ASSERT_TRUE(Log::generateConfigFile("a", Dir(), ""));
    EXPECT_TRUE(Log::createLogger("b", Dir()));
    const std::string before = Ini();
    EXPECT_TRUE(Log::createLogger("B", Dir()));
    EXPECT_EQ(Ini(), before);
    EXPECT_TRUE(Log::updateLoggerName("b", "new b", Dir()));
    EXPECT_FALSE(Log::updateLoggerName("b", "c", Dir()));
    EXPECT_FALSE(Log::updateLoggerName("a", "new b", Dir()));
    EXPECT_TRUE(Log::createLogger("b", Dir())); // its section's name is taken
    EXPECT_EQ(Ini(), "\n[main]\na=a_logger\nnew b=b_logger\nb=b(01)_logger\n" + Section("a_logger", "a.txt") +
                         Section("common", "common_logs.txt") + Section("b_logger", "b.txt") +
                         Section("b(01)_logger", "b.1.txt"));

    for (const char* file : {"logs/b.txt.1", "logs/b.txt.lock", "logs/keep.txt"})
        m_root.Write(file, "x");
    EXPECT_TRUE(Log::deleteLogger("new b", Dir()));
    EXPECT_FALSE(Log::deleteLogger("new b", Dir()));
    EXPECT_EQ(Ini(), "\n[main]\na=a_logger\nb=b(01)_logger\n" + Section("a_logger", "a.txt") +
                         Section("common", "common_logs.txt") + Section("b(01)_logger", "b.1.txt"));
    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(Logs()))
        left.push_back(entry.path().filename().string());
    EXPECT_THAT(left, UnorderedElementsAre("a.txt", "b.1.txt", "common_logs.txt", "keep.txt"));
}

} // namespace
