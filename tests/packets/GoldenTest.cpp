#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "PacketKit.h"

/// One request and its response of every kind, to the byte. What a few kinds write themselves differs from what their
/// readers take: NAME.written.xml stands beside NAME.request.xml then.

namespace {

std::string Golden(const std::string& name, const char* which)
{
    std::ifstream file(std::string(VK_SOURCE_DIR "/tests/packets/golden/") + name + "." + which + ".xml",
                       std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

template <class Packet> class GoldenText : public testing::Test
{
protected:
    const std::string m_name = Packet::kElement;
    const std::string m_request = Golden(m_name, "request");
    const std::string m_response = Golden(m_name, "response");

    std::unique_ptr<Packet> Read(const std::string& text)
    {
        VKMXPmEnvelope envelope;
        EXPECT_TRUE(envelope.ParseXML(text)) << envelope.m_strErrorText;
        EXPECT_EQ(envelope.GetCount(), 1u);
        return std::unique_ptr<Packet>(dynamic_cast<Packet*>(envelope.Detach(0)));
    }
};

TYPED_TEST_SUITE(GoldenText, kit::AllKinds);

TYPED_TEST(GoldenText, OfARequestIsReadAndWritten)
{
    const auto packet = this->Read(this->m_request);
    ASSERT_TRUE(packet);
    EXPECT_EQ(kit::Envelope(kit::Sent(*packet) + "\n"), this->m_request);
    const std::string written = Golden(this->m_name, "written");
    VKMXPmEnvelope envelope;
    ASSERT_TRUE(envelope.Add(std::make_unique<TypeParam>(*packet).release()));
    EXPECT_EQ(envelope.GenerateXML(), written.empty() ? this->m_request : written);
}

/// As a server answers: it keeps the request, fills in what it found and sends it back.
TYPED_TEST(GoldenText, OfAResponseIsReadAndWritten)
{
    auto packet = this->Read(this->m_request);
    auto answer = this->Read(this->m_response);
    ASSERT_TRUE(packet && answer);
    EXPECT_EQ(answer->m_iPacketType, VKMXPmBase::kResponse);
    EXPECT_TRUE(vk::mxp::SameParameters(*packet, *answer));

    packet->m_iPacketType = VKMXPmBase::kResponse;
    packet->m_iResponseCode = answer->m_iResponseCode;
    packet->m_strResponseMessage = answer->m_strResponseMessage;
    packet->m_eResponseResultType = answer->m_eResponseResultType;
    if (answer->m_eResponseResultType == eRespResultXml)
        vk::mxp::ReadFields(answer->m_objResponseResultNode, *packet, TypeParam::ResultFields());
    VKMXPmEnvelope envelope;
    ASSERT_TRUE(envelope.Add(packet.release()));
    EXPECT_EQ(envelope.GenerateXML(), this->m_response);
}

} // namespace
