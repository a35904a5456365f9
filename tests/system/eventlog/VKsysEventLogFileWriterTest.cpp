#include <gmock/gmock.h>

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "LockFile.h"
#include "SystemLogProbe.h"
#include "TempDir.h"
#include "VKconException.h"
#include "VKsysEventLogFileWriter.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using testing::UnorderedElementsAreArray;
using Level = VKLogInterface::LogLevel;

constexpr long kMoment = 1000000000;

/// A writer on one file that all loggers share.
struct Writer : VKsysEventLogFileWriter
{
    explicit Writer(const std::string& path, unsigned int bytes = 100000, unsigned int files = 3)
    {
        EXPECT_TRUE(setFilePath(path));
        setPerProcessFile(false);
        setNumBytesPerFile(bytes);
        setNumOfFiles(files);
    }
};

bool Write(VKsysEventLogFileWriter& writer, const std::string& message, const std::string& name = "core")
{
    return writer(name, Level::INFO, message, 0, nullptr, kMoment);
}

std::string Stamp()
{
    std::string stamp;
    VKsysEventLogWriterInterface::getTimeStamp(kMoment, &stamp);
    return stamp;
}

TEST(LogFileWriter, PutsTheLoggersNameIntoSharedFilesAndIntoTheNamesOfOwnFiles)
{
    setenv("TZ", "UTC0", 1);
    tzset();
    TempDir dir;
    Writer writer(dir / "all.txt");
    EXPECT_TRUE(writer("a core", Level::ERROR, "100% %s", 12, "x.cpp", kMoment));
    EXPECT_TRUE(writer("a core", Level::NONE, "odd", 0, nullptr, kMoment));
    EXPECT_EQ(dir.Read("all.txt"), "09/09/2001 01:46:40 a core [ERROR] 100% %s\n09/09/2001 01:46:40 a core  odd\n");

    writer.setPerProcessFile(true);
    EXPECT_TRUE(writer("a core", Level::TRACE, "own", 0, nullptr, kMoment));
    EXPECT_EQ(dir.Read("a_core.txt"), "09/09/2001 01:46:40 [TRACE] own\n");
}

TEST(LogFileWriter, EndsALineThatHasNoLineBreak)
{
    const std::pair<const char*, const char*> table[] = {{"a", "a\n"},       {"a\n", "a\n"},     {"a\n \t", "a\n \t"},
                                                         {"a \t", "a \t\n"}, {"a\nb", "a\nb\n"}, {"", ""}};
    for (const auto& [message, written] : table) {
        TempDir dir;
        Writer writer(dir / "f.txt");
        EXPECT_TRUE(Write(writer, message));
        EXPECT_EQ(dir.Read("f.txt"), Stamp() + " core [INFO] " + written);
        writer.setAutoAppend(false);
        std::string key = "AUTOAPPEND", value = "0";
        EXPECT_TRUE(Write(writer, "a"));
        EXPECT_TRUE(writer.setParameter(key, value));
        EXPECT_TRUE(Write(writer, "b"));
        EXPECT_THAT(dir.Read("f.txt"), EndsWith(" b\n"));
    }
}

TEST(LogFileWriter, TakesItsParametersInAnyCaseAndRefusesUselessOnes)
{
    TempDir dir;
    const std::tuple<std::string, std::string, bool, bool> table[] = {
        {"bytesPerFiles", "0", false, false},  {"bytesPerFiles", "-1", false, false},
        {"bytesperfiles", "100", true, false}, {"numFiles", "none", false, false},
        {"NUMFILES", "2", true, false},        {"anything", "", true, false},
        {"filePath", "", false, false},        {"filePath", dir.Path().string(), false, false},
        {"filePath", dir / "f", true, true},   {"bytesPerFiles", "99999999999", true, true},
        {"numFiles", "0", false, false}};
    SystemLogProbe syslog;
    VKsysEventLogFileWriter writer;
    for (auto [key, value, taken, ready] : table) {
        EXPECT_EQ(writer.setParameter(key, value), taken) << key << "=" << value;
        EXPECT_EQ(writer.isInitialized(), ready) << key << "=" << value;
    }
    EXPECT_FALSE(Write(writer, "not ready"));
    EXPECT_TRUE(syslog.Has("VKsysEventLogInterface::setFilePath: Exception raised! IO path[" + dir.Path().string()));
}

TEST(LogFileWriter, RotatesAFileThatHasReachedItsSizeBeforeTheNextRecord)
{
    const std::string first = Stamp() + " core [INFO] first\n";
    TempDir dir;
    Writer writer(dir / "f.txt", static_cast<unsigned int>(first.size()), 3);
    dir.Write("f.txt.07", "foreign");
    dir.Write("f.txt.4", "older than are kept");
    for (const char* message : {"first", "second", "third", "fourth", "fifth"})
        EXPECT_TRUE(Write(writer, message));

    const std::string lead = Stamp() + " core [INFO] ", archived = " Archiving " + (dir / "f.txt") + "\n";
    EXPECT_EQ(dir.Read("f.txt"), lead + "fifth\n");
    for (const auto& [name, message] :
         {std::pair("f.txt.1", "fourth\n"), {"f.txt.2", "third\n"}, {"f.txt.3", "second\n"}})
        EXPECT_THAT(dir.Read(name), AllOf(StartsWith(lead + message), HasSubstr(archived))) << name;
    EXPECT_EQ(dir.Read("f.txt.4"), "older than are kept");
    EXPECT_EQ(dir.Read("f.txt.07"), "foreign");

    writer.setNumOfFiles(1);
    EXPECT_TRUE(Write(writer, "sixth"));
    EXPECT_THAT(dir.Read("f.txt.1"), StartsWith(lead + "fifth\n"));
    EXPECT_THAT(dir.Read("f.txt.2"), StartsWith(lead + "third\n"));
}

/// Every line of the log and its rotated files, but those that tell of the rotation.
std::vector<std::string> AllRecords(const TempDir& dir)
{
    std::vector<std::string> records;
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) {
        std::istringstream file(dir.Read(entry.path().filename().string()));
        for (std::string line; std::getline(file, line);)
            if (line.find(" Archiving ") == std::string::npos)
                records.push_back(line.substr(line.find("] ") + 2));
    }
    return records;
}

TEST(LogFileWriter, ProcessesAndThreadsOnOneRotatedFileLoseNothing)
{
    TempDir dir;
    constexpr int kRecords = 150;
    const auto writeAll = [&](const std::string& who) {
        Writer writer(dir / "f.txt", 1000, 500);
        for (int i = 0; i < kRecords; ++i)
            if (!Write(writer, who + std::to_string(1000 + i)))
                return 1;
        return 0;
    };
    {
        ChildProcess one([&] { return writeAll("a"); });
        ChildProcess two([&] { return writeAll("b"); });
        std::thread thread([&] { EXPECT_EQ(writeAll("c"), 0); });
        EXPECT_EQ(writeAll("d"), 0);
        thread.join();
        EXPECT_EQ(one.Wait(), 0);
        EXPECT_EQ(two.Wait(), 0);
    }
    std::vector<std::string> wanted;
    for (const char* who : {"a", "b", "c", "d"})
        for (int i = 0; i < kRecords; ++i)
            wanted.push_back(who + std::to_string(1000 + i));
    EXPECT_THAT(AllRecords(dir), UnorderedElementsAreArray(wanted));
}

TEST(LogFileWriter, AnswersFalseAndTellsSyslogWhatTheDiskRefuses)
{
    TempDir dir;
    SystemLogProbe syslog;
    std::filesystem::create_symlink("/dev/full", dir / "full.txt");
    Writer full(dir / "full.txt");
    EXPECT_FALSE(Write(full, "x"));
    EXPECT_THAT(syslog.Take(), AllOf(StartsWith("3 "),
                                     HasSubstr("-ERROR VKsysEventLogFileWriter::DoWork: Exception raised! IO path[")));

    std::filesystem::create_directory(dir / "sub");
    Writer gone(dir / "sub/f.txt");
    std::filesystem::remove_all(dir / "sub");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(Write(gone, "x"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10)); // not the minute of a held lock
    EXPECT_TRUE(syslog.Has("LockFile Creation Failed"));
}

TEST(LogLockFile, HasOneHolderAmongProcessesAndThreads)
{
    TempDir dir;
    const std::string path = dir / "f.lock";
    {
        const LockFile mine(path);
        EXPECT_THROW(LockFile(path, 2, 1), VKconException); // another thread of this process fares alike
        ChildProcess other([&] {
            try {
                LockFile(path, 2, 1);
            } catch (const VKconException& error) {
                return error.GetMsg() == "LockFile Creation Failed" ? 0 : 1;
            }
            return 2;
        });
        EXPECT_EQ(other.Wait(), 0);
        // The plain lock of a program that knows nothing of this class is kept out too.
        ChildProcess plain([&] {
            struct flock whole = {};
            whole.l_type = F_WRLCK;
            return fcntl(open(path.c_str(), O_RDWR), F_SETLK, &whole) == -1 ? 0 : 1;
        });
        EXPECT_EQ(plain.Wait(), 0);
    }
    EXPECT_NO_THROW(LockFile(path, 1, 1));
}

} // namespace
