#include "VKtime.h"

#include "VKutil.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <sys/time.h>

namespace {

constexpr long kNoon = 1700049600; // 2023-11-15 12:00:00 GMT

/// Tests in a zone of their own, with the one of the machine put back.
class Time : public testing::Test
{
protected:
    void SetUp() override { UseZone("CET-1CEST,M3.5.0,M10.5.0/3"); }
    void TearDown() override { UseZone(m_zone); }
    static void UseZone(const std::string& zone)
    {
        zone.empty() ? unsetenv("TZ") : setenv("TZ", zone.c_str(), 1);
        tzset();
    }

private:
    const std::string m_zone = std::getenv("TZ") ? std::getenv("TZ") : "";
};

TEST_F(Time, IsWrittenLocally)
{
    EXPECT_EQ(VKstringSQLTime(kNoon), "11/15/2023 13:00:00");
    EXPECT_EQ(VKstringSQLFilterTime(kNoon + 65), "11/15/2023 13:01:05");
    EXPECT_EQ(VKstringSQLGetTime(kNoon), "2023-11-15 13:00:00");
    EXPECT_EQ(VKstringGetDate(0), "01/01/1970");
    EXPECT_STREQ(VKutilCtime(0), "Thu Jan  1 01:00:00 1970");
    EXPECT_EQ(VKstringSQLCTime(0), "Thu Jan  1 01:00:00 1970");
    EXPECT_EQ(VKstringSQLTime(LONG_MAX), "") << "no calendar holds it";
    char text[11];
    EXPECT_EQ(VKutilGetDate(kNoon, text, sizeof text), 10);
    EXPECT_STREQ(text, "11/15/2023");
    EXPECT_EQ(VKutilGetDate(kNoon, text, 10), -1);
    EXPECT_EQ(VKutilStrFTime(text, sizeof text, "", kNoon), 0);
    EXPECT_EQ(VKutilStrFTime(text, 0, "%Y", kNoon), -1);
}

TEST_F(Time, ReadsTheClockAndGivesGmtAsWhatReadsAsGmtLocally)
{
    const long before = std::time(nullptr);
    timeval now{};
    EXPECT_TRUE(GetTimeOfDay(now));
    EXPECT_GE(now.tv_sec, before);
    EXPECT_GE(VKutilNow(), before);
    EXPECT_GE(GetCurrTimeInMS(), before * 1000);
    EXPECT_LE(GetCurrTimeInMS(), (VKutilNow() + 1) * 1000);
    EXPECT_EQ(VKutilGetCurrYear(), std::atoi(VKstringSQLGetTime(VKutilNow()).c_str()));
    EXPECT_EQ(VKstringSQLGetTime(VKutilGetGMT(kNoon)), "2023-11-15 12:00:00");
    EXPECT_LE(std::abs(VKutilNowGMT() - VKutilGetGMT(VKutilNow())), 1);
}

TEST_F(Time, SnppWithoutAnOffsetIsALocalTimeThatThereIs)
{
    EXPECT_EQ(VKutilSnppTime("231115130000"), kNoon);
    EXPECT_EQ(VKutilSnppTime("231115130000 \t"), kNoon);
    EXPECT_EQ(VKutilSnppTime("230715140000"), 1689422400); // summer time
    EXPECT_EQ(VKutilSnppTime("231114240000"), VKutilSnppTime("231115000000"));
    EXPECT_EQ(VKutilSnppTime("231115125960"), kNoon);
    for (const char* bad : {"", "23111513000", "23111513000x", "231115130000x", "2311151300000", "231315130000",
                            "230015130000", "231100130000", "231132130000", "231115250000", "231115136100",
                            "231115130061", "-31115130000", "231115130000 +0130", "231115130000 x", "231115130000 +",
                            "231115130000 100 200", "231115130000 +99999999999"})
        EXPECT_EQ(VKutilSnppTime(bad), -1) << bad;
    EXPECT_EQ(VKutilSnppTime(nullptr), -1);
}

TEST_F(Time, SnppOffsetCountsHundredsOfHoursFromGmt)
{
    // Zones without summer time, in which the difference is the same at every moment.
    for (const char* zone : {"UTC0", "X-5", "X+8", "IST-5:30"}) {
        UseZone(zone);
        EXPECT_EQ(VKutilSnppTime("231115120000 0"), kNoon) << zone;
        EXPECT_EQ(VKutilSnppTime("231115130000 +0100"), kNoon) << zone;
        EXPECT_EQ(VKutilSnppTime("231115130000  100 "), kNoon) << zone;
        EXPECT_EQ(VKutilSnppTime("231115040000\t-800"), kNoon) << zone;
    }
}

TEST_F(Time, DatesAreParsedPartByPart)
{
    EXPECT_EQ(VKutilParseDate("11/15/2023", false, ' '), kNoon - 13 * 3600);
    EXPECT_EQ(VKutilParseDate("11/15/2023 13:00:00", false, ' '), kNoon - 13 * 3600);
    EXPECT_EQ(VKutilParseDate("11/15/2023", true, ' '), kNoon - 13 * 3600) << "no separator, no time";
    EXPECT_EQ(VKutilParseDate("11/15/2023 13:00:00", true, ' '), kNoon);
    EXPECT_EQ(VKutilParseTimeStamp("11/15/2023-13:00:09", '-'), kNoon + 9);
    EXPECT_EQ(VKutilParseTimeStamp("11/15/2023 -1:-2:-3", ' '), kNoon - 13 * 3600) << "negative parts are 0";
    for (const char* missing : {"", "11", "11/15", "11/15/", "/15/2023", "11//2023", "a/b/c"})
        EXPECT_EQ(VKutilParseDate(missing, false, ' '), 0) << missing;
    for (const char* missing : {"11/15/2023 ", "11/15/2023 13", "11/15/2023 13:00"})
        EXPECT_EQ(VKutilParseDate(missing, true, ' '), 0) << missing;
    EXPECT_EQ(VKutilParseDate(nullptr, true, ' '), 0);
}

TEST_F(Time, AYearOutOfRangeBecomes2002)
{
    const auto parsed = [](const char* date) { return VKstringGetDate(VKutilParseDate(date, false, ' ')); };
    EXPECT_EQ(parsed("05/06/1960"), "05/06/2002");
    EXPECT_EQ(parsed("13/06/2039"), "01/06/2002");
    EXPECT_EQ(parsed("00/06/0000"), "01/06/2002");
    EXPECT_EQ(parsed("12/31/2038"), "12/31/2038");
    EXPECT_EQ(parsed("13/01/2020"), "01/01/2021") << "in range: the calendar's";
    EXPECT_EQ(parsed("1/2/2024"), "01/02/2024");
}

TEST_F(Time, ATimeAloneIsSecondsSinceMidnight)
{
    EXPECT_EQ(VKutilParseTime("01:02:03"), 3723);
    EXPECT_EQ(VKutilParseTime("-1:02:x"), 120);
    EXPECT_EQ(VKutilParseTime("01:02"), 0);
    EXPECT_EQ(VKutilParseTime(nullptr), 0);
}

TEST(JobId, EndsItsMajorPartAtTheFirstMark)
{
    EXPECT_EQ(VKutilParseMajorJobID("17_2_3"), "17");
    EXPECT_EQ(VKutilParseMajorJobID("17"), "17");
    EXPECT_EQ(VKutilParseMajorJobID("_2"), "");
}

} // namespace
