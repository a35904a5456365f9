#include "PacketKit.h"

/// One request and its response of every kind, to the byte. What a few kinds write themselves differs from what their
/// readers take: NAME.written.xml stands beside NAME.request.xml then.

namespace {

template <class Packet> class GoldenText : public testing::Test
{
protected:
    std::string Text(const char* which) const { return kit::Golden(Packet::kElement, which); }
    std::unique_ptr<Packet> Read(const char* which) const
    {
        std::string error;
        auto packet = kit::Only<Packet>(Text(which), &error);
        EXPECT_TRUE(packet) << error;
        return packet ? std::move(packet) : std::make_unique<Packet>();
    }
    static std::string Written(std::unique_ptr<Packet> packet)
    {
        VKMXPmEnvelope envelope;
        EXPECT_TRUE(envelope.Add(packet.release()));
        return envelope.GenerateXML();
    }
};

TYPED_TEST_SUITE(GoldenText, kit::AllKinds);

TYPED_TEST(GoldenText, OfARequestIsReadAndWritten)
{
    auto packet = this->Read("request");
    EXPECT_EQ(kit::Envelope(kit::Sent(*packet) + "\n"), this->Text("request"));
    const std::string written = this->Text("written");
    EXPECT_EQ(this->Written(std::move(packet)), written.empty() ? this->Text("request") : written);
}

/// As a server answers: it keeps the request, fills in what it found and sends it back.
TYPED_TEST(GoldenText, OfAResponseIsReadAndWritten)
{
    auto packet = this->Read("request");
    const auto answer = this->Read("response");
    EXPECT_EQ(answer->m_iPacketType, VKMXPmBase::kResponse);
    EXPECT_TRUE(vk::mxp::SameParameters(*packet, *answer));
    kit::Answer(*packet, *answer);
    EXPECT_EQ(this->Written(std::move(packet)), this->Text("response"));
}

} // namespace
