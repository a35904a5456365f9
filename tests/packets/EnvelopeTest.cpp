#include <gtest/gtest.h>

#include <ctime>

#include "PacketKit.h"

namespace {

const std::string kConfirm =
    kit::Request("confirm-msg", "<job-id>J</job-id>\n<response>r</response>\n<remarks></remarks>\n");

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    return text.replace(text.find(from), from.size(), to);
}

TEST(Envelope, IsWrittenToTheByte)
{
    VKMXPmEnvelope envelope;
    EXPECT_EQ(envelope.GenerateXML(), "<mxp xmlns='vardock:mxp' version='1.0' dispatch='0' expire='0'>\n</mxp>");
    EXPECT_FALSE(envelope.Add(nullptr));
    VKMXPmConfirmMsg notValid;
    EXPECT_FALSE(envelope.Add(&notValid));
    auto confirm = kit::Full<VKMXPmConfirmMsg>();
    confirm->m_strJobID = "J";
    confirm->m_strResponse = "r";
    confirm->m_strRemarks = "";
    ASSERT_TRUE(envelope.Add(confirm.release()));
    EXPECT_EQ(envelope.GenerateXML(), kit::Envelope(kConfirm));
    envelope.m_bRedirect = true;
    envelope.m_strVersion = "1.1'";
    EXPECT_EQ(envelope.GenerateXML().find("<mxp xmlns='vardock:mxp:redirect' version='1.1&apos;' dispatch="), 0u);
}

TEST(Envelope, HandsItsPacketsOutAndCleansUpTheRest)
{
    VKMXPmEnvelope envelope;
    ASSERT_TRUE(envelope.ParseXML(kit::Envelope(kConfirm + Replaced(kConfirm, "J<", "K<") + kConfirm)));
    EXPECT_TRUE(envelope.m_bValid);
    EXPECT_EQ(envelope.GetIteratorLast() - envelope.GetIterator(), 3);
    EXPECT_EQ(envelope.Detach(3), nullptr);
    const std::unique_ptr<VKMXPmBase> second(envelope.Detach(1));
    EXPECT_EQ(dynamic_cast<VKMXPmConfirmMsg&>(*second).m_strJobID, "K");
    EXPECT_EQ(envelope.GetCount(), 2u);
    EXPECT_TRUE(envelope.ClearModels());
    EXPECT_FALSE(envelope.m_bValid);
    EXPECT_EQ(envelope.GetCount(), 0u);
}

TEST(Envelope, WithoutPacketsAndOfTheRedirectSpaceIsValid)
{
    VKMXPmEnvelope envelope;
    EXPECT_TRUE(envelope.ParseXML("<mxp xmlns=\"vardock:mxp\"/>"));
    EXPECT_FALSE(envelope.m_bRedirect);
    EXPECT_TRUE(envelope.ParseXML(kit::Envelope("<what-ever/>", "vardock:mxp:redirect")));
    EXPECT_TRUE(envelope.m_bRedirect);
    EXPECT_EQ(envelope.GetCount(), 0u);
}

struct Failing
{
    const char* what;
    std::string text;
    int code;
    const char* error;
};

class EnvelopeError : public testing::TestWithParam<Failing>
{
};

TEST_P(EnvelopeError, IsToldByCodeAndText)
{
    VKMXPmEnvelope envelope;
    EXPECT_FALSE(envelope.ParseXML(GetParam().text));
    EXPECT_FALSE(envelope.m_bValid);
    EXPECT_EQ(envelope.m_iErrorCode, GetParam().code);
    EXPECT_EQ(envelope.m_strErrorText, GetParam().error);
    EXPECT_TRUE(envelope.ParseXML(kit::Envelope(kConfirm))) << "and the next envelope is read as ever";
    EXPECT_EQ(envelope.m_iErrorCode, 0);
}

std::string Deep(std::size_t levels)
{
    std::string text;
    for (std::size_t i = 0; i < levels; ++i)
        text += "<a>";
    return text;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, EnvelopeError,
    testing::Values(
        Failing{"Empty", "", 1001, "Empty input XML string."},
        Failing{"Malformed", "<mxp xmlns='vardock:mxp'><a></mxp>", 1003, "XML Parsing failed."},
        Failing{"InvalidUtf8", kit::Envelope("<a>\xFF</a>"), 1003, "XML Parsing failed."},
        Failing{"EntityBomb", "<!DOCTYPE mxp [<!ENTITY a 'aaaa'>]>" + kit::Envelope(kConfirm), 1003,
                "XML Parsing failed."},
        Failing{"Deep", kit::Envelope(Deep(100000)), 1003, "XML Parsing failed."},
        Failing{"OtherRoot", "<mxq xmlns='vardock:mxp'/>", 1004, "Unable to find root tag <mxp>."},
        Failing{"OtherSpace", kit::Envelope(kConfirm, "vardock:mxp2"), 1005, "Incorrect XML namespace specification."},
        Failing{"NoSpace", "<mxp/>", 1007, "XML parsing error. No attribute by given name."},
        Failing{"NoParameters", kit::Envelope("<confirm-msg xmlns='vardock:mxp:request' type='request' seq='1'/>"),
                1007, "XML parsing error. Unable to find child node 'parameters'."},
        Failing{"NoSequence", kit::Envelope(Replaced(kConfirm, " seq='7'", "")), 1007,
                "XML parsing error. No attribute by given name."},
        Failing{"NoResponseBlock",
                kit::Envelope(Replaced(Replaced(kConfirm, "='request'", "='response'"), "mxp:request", "mxp:response")),
                1007, "XML parsing error. Unable to find child node 'response'."},
        Failing{"MixedKind", kit::Envelope(Replaced(kConfirm, "='request'", "='response'")), 1008,
                "NULL modal object."},
        Failing{"UnknownPacket", kit::Envelope("<wipe-all/>"), 1008, "NULL modal object."},
        Failing{"EmptyJob", kit::Envelope(Replaced(kConfirm, "J<", "<")), 1008, "NULL modal object."}),
    [](const auto& test) { return test.param.what; });

TEST(Envelope, KeepsThePacketsBeforeTheFirstBadOne)
{
    VKMXPmEnvelope envelope;
    EXPECT_FALSE(envelope.ParseXML(kit::Envelope(kConfirm + kConfirm + "<unknown/>" + kConfirm)));
    EXPECT_EQ(envelope.GetCount(), 2u);
    EXPECT_EQ(envelope.m_iErrorCode, 1008);
}

TEST(Envelope, CutAtAnyByteIsRefusedWithoutHarm)
{
    VKMXPmEnvelope whole;
    ASSERT_TRUE(whole.Add(kit::Full<VKMXPmMessage>().release()));
    const std::string text = whole.GenerateXML();
    for (std::size_t size = 1; size < text.size(); ++size) {
        VKMXPmEnvelope envelope;
        ASSERT_FALSE(envelope.ParseXML(text.substr(0, size))) << size;
        ASSERT_EQ(envelope.m_iErrorCode, 1003) << size;
    }
}

TEST(Envelope, CarriesAFiveMegabyteBodyAndAThousandPackets)
{
    auto large = kit::Full<VKMXPmMessage>();
    large->m_strBody = std::string(5'000'000, 'x');
    VKMXPmEnvelope sent;
    ASSERT_TRUE(sent.Add(large.release()));
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(sent.Add(kit::Full<VKMXPmMessage>().release()));
    VKMXPmEnvelope received;
    ASSERT_TRUE(received.ParseXML(sent.GenerateXML())) << received.m_strErrorText;
    EXPECT_EQ(received.GetCount(), 1001u);
    EXPECT_EQ(received.GenerateXML(), sent.GenerateXML());
}

TEST(Envelope, ChecksItsTimesOnlyWhenAsked)
{
    const long now = std::time(nullptr);
    const auto timed = [](long dispatch, long expire) {
        return "<mxp xmlns='vardock:mxp' version='2' dispatch='" + std::to_string(dispatch) + "' expire='" +
               std::to_string(expire) + "'/>";
    };
    VKMXPmEnvelope envelope;
    EXPECT_TRUE(envelope.ParseXML(timed(now + 100, now - 100)));
    EXPECT_EQ(envelope.m_strVersion, "1.0");
    envelope.m_bCheckTimes = true;
    EXPECT_TRUE(envelope.ParseXML(timed(now - 100, now + 100)));
    EXPECT_EQ(envelope.m_strVersion, "2");
    EXPECT_EQ(envelope.m_tDispatchTime, now - 100);
    EXPECT_FALSE(envelope.ParseXML(timed(now + 100, now + 200)));
    EXPECT_EQ(envelope.m_strErrorText, "Incorrect envelope dispatch time.");
    EXPECT_FALSE(envelope.ParseXML(timed(now - 200, now - 100)));
    EXPECT_EQ(envelope.m_strErrorText, "Envelope is expired.");
    EXPECT_EQ(envelope.m_iErrorCode, 1006);
}

TEST(Envelope, GathersErrorTextsTheNewestFirst)
{
    VKMXPmEnvelope envelope;
    envelope.SetError(1, "a");
    envelope.SetError(2, "b");
    EXPECT_EQ(envelope.m_strErrorText, "b a");
    EXPECT_EQ(envelope.m_iErrorCode, 2);
}

TEST(Envelope, KnowsItsPacketsByTheirOwnNames)
{
    std::vector<std::string> names;
    for (const auto* row = VKMXPmEnvelope::arrModelMap.data(); row->first; ++row) {
        names.emplace_back(row->first);
        EXPECT_STREQ(std::unique_ptr<VKMXPmBase>(row->second())->GetName(), row->first);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"set-my-status", "message", "set-msg-status", "send-msg-response",
                                               "confirm-msg", "reject-msg", "send-msg", "get-msg-status",
                                               "exec-resp-action", "getlist-resp-action", "activate", "deactivate",
                                               "set-permissions", "set-settings", "wipe", "getlist-receivers",
                                               "getlist-recipients", "get-recipients"}));
}

} // namespace
