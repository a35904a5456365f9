#include "RecordingLogger.h"
#include "VKLog.h"

#include <gmock/gmock.h>
#include <stdexcept>

using testing::ElementsAre;
using vktest::RecordingLogger;

namespace {

TEST(Log, EvaluatesArgumentsOnlyForLevelsThatAreOn)
{
    int evaluated = 0;
    const auto count = [&] { return ++evaluated; };
    RecordingLogger logger(VKLogInterface::WARN);
    VKLogInterface* none = nullptr;
    VK_LOG_FATAL(none, "%d", count());
    VK_LOG_INFO(&logger, "%d", count());
    EXPECT_EQ(evaluated, 0);
    VK_LOG_WARN(&logger, "warned %d", count());
    VK_LOG_CRITICAL(&logger, "critical %d", count());
    EXPECT_THAT(logger.Messages(VKLogInterface::WARN), ElementsAre("warned 1"));
    EXPECT_THAT(logger.Messages(VKLogInterface::CRITICAL), ElementsAre("critical 2"));
}

TEST(Log, EachMacroWritesAtItsLevel)
{
    RecordingLogger logger;
    VK_LOG_TRACE(&logger, "1");
    VK_LOG_DEBUG(&logger, "2");
    VK_LOG_INFO(&logger, "3");
    VK_LOG_WARN(&logger, "4");
    VK_LOG_ERROR(&logger, "5");
    VK_LOG_CRITICAL(&logger, "6");
    VK_LOG_FATAL(&logger, "7");
    ASSERT_EQ(logger.Records().size(), 7U);
    for (const auto& record : logger.Records())
        EXPECT_EQ(record.level, std::stoi(record.message));
}

/// Plays one scope of each kind.
void PlayScopes(VKLogInterface* logger)
{
    {
        VK_LOG_SCOPE(plain, logger, "A::Plain()");
    }
    {
        VK_LOG_SCOPE_PREFIX(prefixed, logger, "A::Flag()", "Job ID: [%s] >> ", "7_1");
        EXPECT_FALSE(prefixed.Result(false));
    }
    {
        vk::LogScope special(logger, VK_LOG_PLACE, "A::Number()", "", "Starting A::Number()");
        special.Result(3);
    }
    {
        VK_LOG_SCOPE(object, logger, "A::Object()");
        object.Result(logger);
    }
    try {
        VK_LOG_SCOPE(thrown, logger, "A::Throws()");
        thrown.Result(true);
        throw std::runtime_error("x");
    } catch (const std::runtime_error&) {
    }
}

TEST(LogScope, WritesEnterAndLeaveLinesWithTheResultAtTraceOnly)
{
    RecordingLogger logger, quiet(VKLogInterface::DEBUG);
    PlayScopes(&logger);
    EXPECT_THAT(logger.Messages(VKLogInterface::TRACE),
                ElementsAre("Entering A::Plain()", "Leaving A::Plain()", "Job ID: [7_1] >> Entering A::Flag()",
                            "Job ID: [7_1] >> Leaving A::Flag() with FALSE.", "Starting A::Number()",
                            "Leaving A::Number() with 3.", "Entering A::Object()", "Leaving A::Object() with OBJECT.",
                            "Entering A::Throws()", "Leaving A::Throws() with an exception."));
    PlayScopes(&quiet);
    EXPECT_TRUE(quiet.Records().empty());
    PlayScopes(nullptr);
}

TEST(PrintfToString, KeepsTextsOfAnyLength)
{
    for (const std::size_t length : {0U, 1U, 4094U, 4095U, 4096U, 5000U, 100000U}) {
        const std::string text(length, 'x');
        EXPECT_EQ(printfToString("%s", text.c_str()), text) << length;
    }
    EXPECT_EQ(printfToString("%s has %d%%", "tank", 5), "tank has 5%");
    EXPECT_EQ(vk::LogWanted(nullptr, VKLogInterface::FATAL), false);
}

} // namespace
