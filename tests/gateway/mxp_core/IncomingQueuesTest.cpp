#include "VKMXPIncomingQueues.h"

#include <gtest/gtest.h>

namespace {

using vk::IncomingQueues;

TEST(IncomingQueues, GivesASessionItsOwnMessagesInOrder)
{
    IncomingQueues queues;
    queues.Put("a@x/1", "a@x", true, "first");
    queues.Put("b@x/1", "b@x", true, "other");
    queues.Put("a@x/1", "a@x", true, "second");

    EXPECT_EQ(queues.TakeFor("a@x"), "first");
    EXPECT_EQ(queues.TakeFor("a@x"), "second");
    EXPECT_FALSE(queues.TakeFor("a@x"));
    EXPECT_EQ(queues.TakeFor("b@x/1"), "other");
}

TEST(IncomingQueues, WalksTheResourcesOfABareJidInOrder)
{
    IncomingQueues queues;
    queues.Put("a@x/2", "a@x", true, "from 2");
    queues.Put("a@x/1", "a@x", true, "from 1");

    EXPECT_EQ(queues.TakeFor("a@x"), "from 1");
    EXPECT_EQ(queues.TakeFor("a@x"), "from 2");
}

TEST(IncomingQueues, GivesStraysOnlyOfSendersWithoutASession)
{
    IncomingQueues queues;
    queues.Put("a@x/1", "a@x", true, "has a session");
    queues.Put("b@x/1", "b@x", false, "stray");

    const auto stray = queues.TakeStray();
    ASSERT_TRUE(stray);
    EXPECT_EQ(stray->first, "b@x");
    EXPECT_EQ(stray->second, "stray");
    EXPECT_FALSE(queues.TakeStray());
    EXPECT_EQ(queues.TakeFor("a@x"), "has a session");
}

TEST(IncomingQueues, LetsANewSessionFetchWhatCameBeforeIt)
{
    IncomingQueues queues;
    queues.Put("a@x/1", "a@x", false, "early");
    EXPECT_EQ(queues.TakeFor("a@x"), "early");
    EXPECT_FALSE(queues.TakeStray());
}

TEST(IncomingQueues, CountsStraysWhenASenderGetsOrLosesItsSession)
{
    IncomingQueues queues;
    queues.Put("a@x/1", "a@x", false, "one");
    queues.Put("a@x/1", "a@x", true, "two");
    EXPECT_FALSE(queues.TakeStray()) << "the whole queue belongs to the session now";
    queues.Put("a@x/1", "a@x", false, "three");
    for (const char* expected : {"one", "two", "three"})
        EXPECT_EQ(queues.TakeStray()->second, expected);
    EXPECT_FALSE(queues.TakeStray());
}

TEST(IncomingQueues, KeepsOrderThroughAFloodThatIsFetchedMeanwhile)
{
    IncomingQueues queues;
    int put = 0;
    int taken = 0;
    for (int round = 0; round < 1000; ++round) {
        for (int i = 0; i < 10; ++i)
            queues.Put("a@x/1", "a@x", true, std::to_string(put++));
        for (int i = 0; i < 9; ++i)
            ASSERT_EQ(queues.TakeFor("a@x"), std::to_string(taken++));
    }
    while (taken < put)
        ASSERT_EQ(queues.TakeFor("a@x"), std::to_string(taken++));
    EXPECT_FALSE(queues.TakeFor("a@x"));
}

} // namespace
