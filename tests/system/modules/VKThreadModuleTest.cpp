#include "RecordingLogger.h"
#include "VKThreadModule.h"
#include "VKconException.h"
#include "VKioException.h"

#include <functional>
#include <gmock/gmock.h>
#include <stdexcept>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using vktest::RecordingLogger;

namespace {

class Module : public VKThreadModule
{
public:
    explicit Module(std::function<void(Module&)> body) : m_body(std::move(body)) {}
    void DoThreadWork() override { m_body(*this); }
    bool FinalizeSpecial() override
    {
        finalized = true;
        return false;
    }
    std::string GetRunningModuleName() override { return "probe"; }
    bool IsLoggerRequired() override { return loggerRequired; }

    using VKPlainModule::GetLogger;
    using VKThreadModule::IsStopRequested;
    using VKThreadModule::KeepContinueMyself;

    bool loggerRequired = false;
    bool finalized = false;

private:
    std::function<void(Module&)> m_body;
};

TEST(VKThreadModule, RunsUntilItIsStopped)
{
    RecordingLogger logger;
    int rounds = 0;
    Module module([&](Module& self) {
        EXPECT_FALSE(self.KeepContinueMyself(1, false)) << "an interruptible sleep always answers false";
        while (self.KeepContinueMyself(1, true))
            ++rounds;
        EXPECT_TRUE(self.IsStopRequested());
        EXPECT_TRUE(self.KeepContinueMyself(0, true)) << "no time means no look at the stop event";
        EXPECT_FALSE(self.KeepContinueMyself(1, true));
    });
    EXPECT_TRUE(module.Initialize(&logger, ""));
    EXPECT_FALSE(module.WaitForThreadStop(-1)) << "never started";
    EXPECT_FALSE(module.IsStopRequested());
    EXPECT_TRUE(module.StartAsThread());
    EXPECT_FALSE(module.WaitForThreadStop(1));
    EXPECT_TRUE(module.StopThread());
    EXPECT_TRUE(module.WaitForThreadStop(-1));
    EXPECT_TRUE(module.finalized);
    EXPECT_THAT(logger.Messages(VKLogInterface::TRACE),
                testing::UnorderedElementsAre("Entering VKThreadModule::StartAsThread()",
                                              "Leaving VKThreadModule::StartAsThread() with TRUE.",
                                              "Entering VKThreadModule::DoWork()", "Leaving VKThreadModule::DoWork()"));
    EXPECT_THAT(logger.Messages(VKLogInterface::INFO),
                ElementsAre(testing::MatchesRegex("Starting 'probe' thread, pid:[0-9]+l ...")));
}

TEST(VKThreadModule, WhatTheBodyThrowsIsLoggedAndTheThreadStillFinishes)
{
    const std::pair<std::function<void(Module&)>, const char*> cases[] = {
        {[](Module&) { throw VKconException(1, "a.cpp", 2, "Lock failed", "Busy"); },
         "Concurrency exception occurred: Exception raised! ThreadID[1] File[a.cpp] Line[2] Msg[Lock failed] "
         "SysMsg[Busy]"},
        {[](Module&) { throw VKioException("/p", "a.cpp", 2, "File Open Failed", "Gone"); },
         "I/O exception occurred: Exception raised! IO path[/p] File[a.cpp] Line[2] Msg[File Open Failed] "
         "SysMsg[Gone]"},
        {[](Module&) { throw std::runtime_error("odd"); }, "General exception occurred: odd"},
        {[](Module&) { throw VKException("hidden"); }, "General exception occurred: std::exception"},
        {[](Module&) { throw 7; }, "Unknown exception occurred."}};
    for (const auto& [body, line] : cases) {
        RecordingLogger logger(VKLogInterface::WARN);
        Module module(body);
        module.Initialize(&logger, "");
        module.StartAsThread();
        ASSERT_TRUE(module.WaitForThreadStop(-1));
        EXPECT_TRUE(module.finalized) << line;
        EXPECT_THAT(logger.Messages(VKLogInterface::CRITICAL), ElementsAre(line));
    }
}

TEST(VKThreadModule, MayBeDeletedAsSoonAsItHasStopped)
{
    for (int round = 0; round < 500; ++round) {
        auto logger = std::make_unique<RecordingLogger>();
        auto module = std::make_unique<Module>([](Module& self) {
            while (self.KeepContinueMyself(1000, true)) {
            }
        });
        module->Initialize(round % 2 == 0 ? logger.get() : nullptr, "");
        module->StartAsThread();
        module->StopThread();
        ASSERT_TRUE(module->WaitForThreadStop(-1));
        module.reset();
        logger.reset();
    }
}

} // namespace
