#include "FreePort.h"
#include "IoFailure.h"
#include "LoopbackServer.h"
#include "RecordingLogger.h"
#include "VKioClientSocket.h"
#include "VKioSSLClientSocket.h"

#include <chrono>
#include <gtest/gtest.h>

using vktest::Identity;
using vktest::LoopbackServer;
using vktest::MessageOf;
using vktest::RecordingLogger;
using vktest::TestAuthority;
using Peer = LoopbackServer::Peer;

namespace {

long MsOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
}

void Echo(Peer& peer)
{
    for (std::string data = peer.Read(); !data.empty() && peer.Write(data); data = peer.Read()) {
    }
}

TEST(VKioSocket, WaitsForAsLongAsItIsTold)
{
    LoopbackServer server([](Peer& peer) { peer.AwaitClose(); });
    VKioClientSocket socket;
    EXPECT_EQ(socket.Wait(true, true, 0), VKioSocket::Failed);
    socket.Connect("127.0.0.1", server.Port());
    const long ms = MsOf([&] { EXPECT_EQ(socket.Wait(true, false, 1500), VKioSocket::TimedOut); });
    EXPECT_GE(ms, 1490);
    EXPECT_LT(ms, 3000);
    EXPECT_EQ(socket.Wait(true, true, -1), VKioSocket::Writable);
}

TEST(VKioSocket, ReadsLinesWithTheirEndsAndWithout)
{
    LoopbackServer server([](Peer& peer) {
        peer.Write("one\r\ntwo\r\nthree;rest");
        peer.AwaitClose();
    });
    VKioClientSocket socket;
    socket.Connect("localhost", server.Port());
    VKioSocket::SocketStatus status = VKioSocket::Failed;
    EXPECT_EQ(socket.ReadLine(status, 5000), "one");
    EXPECT_EQ(socket.ReadLine(5000, status), "two\r\n");
    unsigned char mark[] = ";";
    EXPECT_EQ(socket.ReadTill(mark, 5000, status), "three;");
    EXPECT_EQ(status, VKioSocket::Done);
    EXPECT_EQ(socket.ReadChar(5000, status), 'r');
    EXPECT_EQ(socket.ReadLine(status, 50), "est");
    EXPECT_EQ(status, VKioSocket::TimedOut);
    EXPECT_EQ(socket.GetRemoteAddress(), "localhost:" + std::to_string(server.Port()));
    EXPECT_GT(socket.GetLastActiveTime(), 0);
}

TEST(VKioSocket, FailsWithItsOwnWords)
{
    const int closedPort = FreePort();
    VKioClientSocket socket;
    EXPECT_EQ(MessageOf([&] { socket.Connect("no-such-host.invalid", 80); }), "Socket Unknown Remote Host");
    EXPECT_EQ(MessageOf([&] { socket.Connect("127.0.0.1", 65536); }), "Socket Unknown Remote Host");
    EXPECT_EQ(MessageOf([&] { socket.Connect("127.0.0.1", 80, static_cast<VKioSocket::SocketType>(3)); }),
              "Socket Unknown Type");
    try {
        socket.Connect("127.0.0.1", closedPort);
        ADD_FAILURE() << "nobody listens there";
    } catch (const VKioException& failure) {
        EXPECT_EQ(failure.GetMsg(), "Socket Connecting Failed");
        EXPECT_EQ(failure.GetPath(), "127.0.0.1:" + std::to_string(closedPort));
    }
    EXPECT_EQ(socket.GetSocket(), -1);
}

TEST(VKioSocket, APeerThatIsGoneIsAnErrorAndNeverASignal)
{
    LoopbackServer server([](Peer& peer) {
        peer.Read();
        peer.Reset();
    });
    VKioClientSocket socket;
    socket.Connect("127.0.0.1", server.Port());
    socket.Write("x");
    EXPECT_EQ(socket.Wait(true, false, 5000), VKioSocket::Readable);
    EXPECT_EQ(MessageOf([&] {
                  for (;;)
                      socket.Write("more");
              }),
              "Socket Write Error");

    LoopbackServer closing([](Peer&) {});
    socket.Connect("127.0.0.1", closing.Port());
    unsigned char byte;
    VKioSocket::SocketStatus status;
    EXPECT_EQ(MessageOf([&] { socket.Read(&byte, 1, 5000, status); }), "Socket is closed");
}

TEST(VKioSocket, LogsItsTrafficReadably)
{
    LoopbackServer server(Echo);
    RecordingLogger logger;
    VKioClientSocket socket;
    socket.SetEventLog(&logger);
    socket.Connect("127.0.0.1", server.Port());
    socket.WriteFormat("%s %d\n", "HELLO", 7);
    VKioSocket::SocketStatus status;
    EXPECT_EQ(socket.ReadLine(status, 5000), "HELLO 7");
    EXPECT_TRUE(logger.Has("<= HELLO 7."));
    EXPECT_TRUE(logger.Has("=> HELLO 7."));
}

TEST(VKioSocket, KnowsPortsByNumberAndByName)
{
    char number[] = "8080", name[] = "https", tcp[] = "tcp", big[] = "65536", bad[] = "no such service";
    EXPECT_EQ(VKioSocket::VKAsciiToPort(number, tcp), 8080);
    EXPECT_EQ(VKioSocket::VKAsciiToPort(name, tcp), 443);
    EXPECT_EQ(VKioSocket::VKAsciiToPort(big, tcp), -1);
    EXPECT_EQ(VKioSocket::VKAsciiToPort(bad, tcp), -1);
    EXPECT_EQ(VKioSocket::VKAsciiToPort(nullptr, tcp), -1);
}

class VKioSSLClientSocketTest : public testing::Test
{
protected:
    TestAuthority m_authority;
    RecordingLogger m_logger;
};

TEST_F(VKioSSLClientSocketTest, OffersItsCertificateAndKeepsThePassPhraseToItself)
{
    std::string clientName;
    const auto greet = [&](Peer& peer) {
        clientName = peer.ClientName();
        Echo(peer);
    };
    LoopbackServer server(greet, LoopbackServer::Tls{m_authority.Issue("gateway"), m_authority.Bundle()});
    EXPECT_TRUE(VKioSSLClientSocket::InitializeOpenSSLLibrary());
    const Identity me = m_authority.Issue("the server", "open sesame");
    VKioSSLClientSocket socket(m_authority.Bundle(), me.certificate, me.key, "open sesame",
                               static_cast<VKioSSLClientSocket::MethodType>(5), &m_logger);
    socket.Connect("127.0.0.1", server.Port());
    socket.StartSSL();
    std::string answer;
    socket << "hello" >> answer;
    EXPECT_EQ(answer, "hello");
    EXPECT_EQ(clientName, "the server");
    EXPECT_EQ(socket.Look(), VKioSocket::TimedOut);

    socket.Close();
    EXPECT_EQ(socket.GetSocket(), -1);
    EXPECT_TRUE(m_logger.Has("CN=gateway"));
    EXPECT_FALSE(m_logger.Has("open sesame"));
}

TEST_F(VKioSSLClientSocketTest, AcceptsAnyPeerAndConnectsAgainAfterAReset)
{
    TestAuthority stranger("Stranger");
    LoopbackServer server(Echo, LoopbackServer::Tls{stranger.Issue("other", "", "DNS:elsewhere")});
    VKioSSLClientSocket socket(m_authority.Bundle(), "", "");
    for (int round = 1; round <= 2; ++round) {
        socket.Connect("127.0.0.1", server.Port());
        socket.StartSSL();
        std::string answer;
        socket << "again" >> answer;
        EXPECT_EQ(answer, "again");
        socket.Reset();
    }
    EXPECT_EQ(server.Connections(), 2);
}

TEST_F(VKioSSLClientSocketTest, ACertificateThatCannotBeUsedFailsBeforeAnyByteIsSent)
{
    std::atomic<int> bytes{0};
    LoopbackServer server([&](Peer& peer) { bytes += static_cast<int>(peer.Read().size()); });
    const Identity one = m_authority.Issue("one", "secret"), two = m_authority.Issue("two");
    struct Case
    {
        std::string ca, certificate, key, passPhrase;
        const char* message;
        VKioSSLClientSocket::MethodType method = VKioSSLClientSocket::SSLv23;
    };
    const Case cases[] = {
        {"", one.certificate, two.key, "", "SSL: Private key does not match the certificate public key"},
        {"", one.certificate, one.key, "wrong", "SSL: Setting Key file Failed"},
        {"", one.certificate, one.key, "", "SSL: Setting Key file Failed"},
        {"", one.certificate, "", "", "SSL: Setting Key file Failed"},
        {"", "/no/such.crt", one.key, "secret", "SSL: Setting Certificate file Failed"},
        {"/no/such/bundle", "", "", "", "SSL: Verify Location Failed"},
        {"", "", "", "", "SSL creation failed.", VKioSSLClientSocket::SSLv3}};
    for (const Case& c : cases) {
        VKioSSLClientSocket socket(c.ca, c.certificate, c.key, c.passPhrase, c.method, &m_logger);
        socket.Connect("127.0.0.1", server.Port());
        EXPECT_EQ(MessageOf([&] { socket.StartSSL(); }), c.message);
    }
    EXPECT_EQ(bytes, 0);
    EXPECT_FALSE(m_logger.Has("secret"));
}

TEST_F(VKioSSLClientSocketTest, AHandshakeThatFailsSaysWhy)
{
    LoopbackServer plain([](Peer& peer) { peer.Write("220 I speak no TLS\r\n"); });
    VKioSSLClientSocket socket;
    socket.Connect("127.0.0.1", plain.Port());
    const std::string message = MessageOf([&] { socket.StartSSL(); });
    EXPECT_EQ(message.rfind("SSL: SSL Connect Failed. Details: TLS failure Error: error:", 0), 0U) << message;
    EXPECT_NE(message.find("wrong version number"), std::string::npos) << message;
}

TEST_F(VKioSSLClientSocketTest, ASilentHandshakeEndsAfterTenSeconds)
{
    LoopbackServer silent([](Peer&) {}, LoopbackServer::Tls{m_authority.Issue("slow"), "", true});
    VKioSSLClientSocket socket;
    socket.Connect("127.0.0.1", silent.Port());
    const long ms = MsOf([&] {
        EXPECT_EQ(MessageOf([&] { socket.StartSSL(); }), "SSL: SSL Connect Failed. Details: The peer says nothing");
    });
    EXPECT_GE(ms, 9900);
    EXPECT_LT(ms, 15000);
}

TEST_F(VKioSSLClientSocketTest, NoticesThatThePeerHasClosedAndSurvivesAReset)
{
    for (const bool reset : {false, true}) {
        const auto end = [reset](Peer& peer) {
            peer.Read();
            if (reset)
                peer.Reset();
        };
        LoopbackServer server(end, LoopbackServer::Tls{m_authority.Issue("gateway")});
        VKioSSLClientSocket socket;
        socket.Connect("127.0.0.1", server.Port());
        socket.StartSSL();
        EXPECT_EQ(socket.Look(), VKioSocket::TimedOut);
        socket << "bye";
        EXPECT_EQ(socket.Wait(true, false, 5000), VKioSocket::Readable);
        unsigned char byte;
        VKioSocket::SocketStatus status;
        EXPECT_EQ(MessageOf([&] { socket.Read(&byte, 1, 5000, status); }),
                  reset ? "SSL Socket Read Error" : "SSL Socket is closed");
        EXPECT_EQ(socket.Look(), VKioSocket::Failed);
        EXPECT_EQ(MessageOf([&] {
                      for (int i = 0; i < 100; ++i)
                          socket << "to nobody";
                  }),
                  "SSL Write Error");
    }
}

} // namespace
