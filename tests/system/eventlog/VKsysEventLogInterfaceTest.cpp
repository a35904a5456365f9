#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include "MemoryWriter.h"
#include "SystemLogProbe.h"
#include "VKLog.h"
#include "VKsysEventLogInterface.h"
#include "VKthread.h"

namespace {

using Log = VKsysEventLogInterface;
using Level = VKLogInterface::LogLevel;

std::unique_ptr<Log> MakeLogger(const std::string& name, MemoryWriter::Store& store, Level level = Log::TRACE)
{
    return std::unique_ptr<Log>(
        Log::CreateInstance(name, Log::SINGLE_THREADED, std::make_unique<MemoryWriter>(store), level));
}

TEST(LogLevels, WordsAndNumbers)
{
    using Writer = VKsysEventLogWriterInterface;
    const std::pair<const char*, int> words[] = {{"trace", 1},       {"Debug", 2},    {"info", 3},  {"INFOR", 3},
                                                 {"information", 3}, {"warn", 4},     {"warni", 4}, {"Warning", 4},
                                                 {"error", 5},       {"critical", 6}, {"criti", 6}, {"fatal", 7}};
    for (const auto& [word, level] : words) {
        EXPECT_EQ(Writer::getLogLevel(word, false), level) << word;
        EXPECT_EQ(Writer::getLogLevel(word, true), level) << word;
    }
    for (const char* word : {"", "none", "infos", "err"}) {
        EXPECT_EQ(Writer::getLogLevel(word, false), Log::WARN) << word;
        EXPECT_EQ(Writer::getLogLevel(word, true), Log::NONE) << word;
    }
    for (const auto& [number, level] : {std::pair(0, Log::NONE), {7, Log::FATAL}, {8, Log::INFO}, {-1, Log::INFO}})
        EXPECT_EQ(Writer::getLogLevel(number), level) << number;
    EXPECT_EQ(Writer::getLogLevelString(6), "CRITICAL");
}

TEST(LogLevels, ALoggerPassesWhatIsAtOrAboveItsLevel)
{
    MemoryWriter::Store store;
    const auto log = MakeLogger("levels", store);
    EXPECT_FALSE(log->WriteFatal("not started", 0, nullptr));
    ASSERT_TRUE(log->Start());
    const std::vector<std::string> all = {"TRACE %d", "DEBUG %d",    "INFO %d", "WARN %d",
                                          "ERROR %d", "CRITICAL %d", "FATAL %d"};
    for (int level = Log::NONE; level <= Log::FATAL; ++level) {
        log->SetLogLevel(static_cast<Level>(level));
        EXPECT_EQ(log->GetLogLevel(), level);
        const std::string text = "%d"; // a finished text: nothing in it is a directive
        const int passed = log->WriteTrace(text, 0, nullptr) + log->WriteDebug(text, 0, nullptr) +
                           log->WriteInfo(text, 0, static_cast<char*>(nullptr)) + log->WriteWarn(text, 0, nullptr) +
                           log->WriteError(text, 0, nullptr) + log->WriteCritical(text, 0, nullptr) +
                           log->WriteFatal(text, 0, nullptr);
        const int first = level == Log::NONE ? 0 : level - 1;
        EXPECT_EQ(passed, 7 - first) << level;
        EXPECT_EQ(store.Take(), std::vector<std::string>(all.begin() + first, all.end())) << level;
    }
    log->Stop();
    EXPECT_FALSE(log->WriteFatal("stopped", 0, nullptr));
    EXPECT_TRUE(store.Take().empty());
}

TEST(LogFormatting, OldOperationsPrefixCutAndSelect)
{
    MemoryWriter::Store store;
    const auto log = MakeLogger("format", store);
    EXPECT_FALSE(log->Print("p", "not started"));
    ASSERT_TRUE(log->Start());
    char place[] = "x.cpp";
    const std::string longText(3000, 'x');
    EXPECT_FALSE(log->Print("p", static_cast<const char*>(nullptr)));
    EXPECT_TRUE(log->Print("p", "%d", 1));
    EXPECT_TRUE(log->WriteInfo("p", "%s", "2"));
    errno = ENOENT;
    EXPECT_TRUE(log->WriteSystemError("p", "%d", 3));
    errno = ENOENT;
    EXPECT_TRUE(log->WriteSystemError(nullptr, "%d", 4));
    EXPECT_TRUE(log->WriteError(Log::SEVERITY_WARNING, "p", 1, place, "%d", 5));
    EXPECT_TRUE(log->WriteError(Log::SEVERITY_ERROR, "p", 1, place, "%d", 6));
    EXPECT_TRUE(log->WriteError(Log::SEVERITY_FATAL, "p", 1, place, "%d", 7));
    EXPECT_TRUE(log->WriteError(static_cast<Log::Severity>(16), "p", 1, place, "none"));
    EXPECT_TRUE(log->WriteTrace(Log::TRACE_LOW, "p", 1, place, "%d", 8));
    EXPECT_TRUE(log->WriteTrace(Log::TRACE_MEDIUM, "p", 1, place, "%d", 9));
    EXPECT_TRUE(log->WriteTrace(Log::TRACE_HIGH, "p", 1, place, "%d", 10));
    EXPECT_TRUE(log->WriteTrace(static_cast<Log::TraceLevel>(16), "p", 1, place, "none"));
    EXPECT_EQ(store.Take(), (std::vector<std::string>{
                                "INFO p 1", "INFO p 2", "ERROR p 3 [System Library Error] No such file or directory",
                                "ERROR 4 [System Library Error] No such file or directory", "WARN p 5", "ERROR p 6",
                                "FATAL p 7", "DEBUG p 8", "DEBUG p 9", "TRACE p 10"}));
    EXPECT_EQ(Log::format2String("%s", longText.c_str()), longText.substr(0, 2047));
    EXPECT_EQ(Log::format2String(nullptr), "");

    log->EnableThreadIdPrefix(true);
    VK_LOG_INFO(log.get(), "%s", longText.c_str());
    EXPECT_EQ(store.Take(), std::vector<std::string>{"INFO [TID:" + std::to_string(GetMyThreadID()) + "] " + longText});
}

std::string MissingText(const std::string& name, int line, const char* file)
{
    try {
        name.empty() ? Log::GetInstance(line, file) : Log::GetInstance(name, line, file);
    } catch (const char* text) {
        return text;
    }
    return "found";
}

TEST(LogRegistry, AMissingLoggerIsToldToSyslogAndByAThrownText)
{
    SystemLogProbe syslog;
    const std::string start = "VKsysEventLogInterface object", end = " is called before creation";
    EXPECT_EQ(MissingText("", 7, "x.cpp"), start + end + " @ line [7] in file [x.cpp].");
    EXPECT_EQ(MissingText("", 0, nullptr), start + end + ".");
    EXPECT_EQ(MissingText("m", 7, "x.cpp"), start + " for module [m]" + end + " @ line [7] in file [x.cpp].");
    EXPECT_EQ(MissingText("m", 0, nullptr), start + " for module [m]" + end + ".");
    EXPECT_TRUE(syslog.Has("-ERROR VKsysEventLogInterface::GetInstance(): " + start + " for module [m]" + end + ".\n"));

    MemoryWriter::Store store;
    const auto log = MakeLogger("m", store);
    EXPECT_EQ(MissingText("m", 0, nullptr), "found");
    EXPECT_EQ(Log::GetInstance(0, nullptr), log.get());
}

TEST(LogRegistry, HoldsFifteenNamesAndRefusesTheSixteenth)
{
    SystemLogProbe syslog;
    MemoryWriter::Store store;
    std::vector<std::unique_ptr<Log>> logs;
    for (int i = 0; i < 15; ++i)
        ASSERT_TRUE(logs.emplace_back(MakeLogger("log" + std::to_string(i), store)));
    EXPECT_EQ(MakeLogger("log15", store), nullptr);
    EXPECT_TRUE(syslog.Has("No place for logger 'log15': there are 15"));
    EXPECT_FALSE(Log::IsInstanceAvailable("log15"));
    EXPECT_EQ(Log::CreateInstance("log7", Log::MULTI_THREADED, "/nowhere", ""), logs[7].get());
    EXPECT_EQ(Log::getVKsysEventLogInterfaceObject(14), logs[14].get());

    logs.erase(logs.begin() + 3); // a deleted logger gives its place free
    EXPECT_FALSE(Log::IsInstanceAvailable("log3"));
    EXPECT_EQ(Log::getVKsysEventLogInterfaceObject(13), logs[13].get());
    logs.push_back(MakeLogger("log15", store));
    EXPECT_TRUE(Log::IsInstanceAvailable("log15"));
}

} // namespace
