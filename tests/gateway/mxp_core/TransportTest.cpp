// The wait and the socket under a connection.

#include "FreePort.h"
#include "VKMXPTcpSocket.h"
#include "VKMXPTrafficWait.h"

#include <gloox/connectiondatahandler.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <tuple>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

template <class Work>
milliseconds Duration(Work work)
{
    const auto start = Clock::now();
    work();
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
}

/// A listening socket on loopback.
class Listener
{
public:
    explicit Listener(int backlog = 4) { std::tie(m_socket, m_port) = ListenOnLoopback(backlog); }
    ~Listener()
    {
        ClosePeer();
        Close();
    }
    int Port() const { return m_port; }
    int Accept() { return m_peer = ::accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC); }
    void ClosePeer() { End(m_peer); }
    void Close() { End(m_socket); }

private:
    static void End(int& socket)
    {
        if (socket >= 0)
            ::close(std::exchange(socket, -1));
    }

    int m_socket = -1;
    int m_peer = -1;
    int m_port = 0;
};

class Handler : public gloox::ConnectionDataHandler
{
public:
    void handleReceivedData(const gloox::ConnectionBase*, const std::string& data) override { received += data; }
    void handleConnect(const gloox::ConnectionBase*) override { ++connects; }
    void handleDisconnect(const gloox::ConnectionBase*, gloox::ConnectionError reason) override
    {
        disconnects.push_back(reason);
    }

    std::string received;
    int connects = 0;
    std::vector<gloox::ConnectionError> disconnects;
};

VKMXPTcpSocket::Clock::time_point In(int seconds) { return Clock::now() + std::chrono::seconds(seconds); }

TEST(TrafficWait, EndsAtOnceWhenAnotherThreadWakesIt)
{
    vk::TrafficWait wait;
    std::thread waker([&] {
        std::this_thread::sleep_for(milliseconds(20));
        wait.Wake();
    });
    EXPECT_LT(Duration([&] { wait.Wait(10000); }), milliseconds(5000));
    waker.join();
}

TEST(TrafficWait, KeepsAWakeThatCameBeforeTheWait)
{
    vk::TrafficWait wait;
    wait.Wake();
    wait.Wake();
    EXPECT_LT(Duration([&] { wait.Wait(10000); }), milliseconds(5000));
    EXPECT_GE(Duration([&] { wait.Wait(30); }), milliseconds(29)) << "used up by the first wait";
    wait.Wake();
    EXPECT_LT(Duration([&] { wait.Wait(10000); }), milliseconds(5000)) << "and a later one counts again";
}

TEST(TrafficWait, LosesNoWakeOfManyThreads)
{
    vk::TrafficWait wait;
    constexpr int kWakes = 20000;
    std::atomic<int> given{0};
    std::thread waker([&] {
        for (int i = 0; i < kWakes; ++i) {
            ++given;
            wait.Wake();
        }
    });
    // Each change of the counter must end a wait that begins behind it or runs meanwhile.
    while (given < kWakes)
        ASSERT_LT(Duration([&] { wait.Wait(10000); }), milliseconds(5000));
    waker.join();
}

TEST(TrafficWait, EndsWhenAWatchedSocketHasData)
{
    int pair[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
    vk::TrafficWait wait;
    wait.Add(pair[0], false);
    ASSERT_EQ(::write(pair[1], "x", 1), 1);
    EXPECT_LT(Duration([&] { wait.Wait(10000); }), milliseconds(5000));
    wait.Remove(pair[0]);
    EXPECT_GE(Duration([&] { wait.Wait(30); }), milliseconds(29));
    ::close(pair[0]);
    ::close(pair[1]);
}

TEST(TcpSocket, TellsRefusalAndUnknownNameApart)
{
    Listener listener;
    const int port = listener.Port();
    listener.Close();
    Handler handler;
    VKMXPTcpSocket refused(&handler, "127.0.0.1", port, nullptr, In(5));
    EXPECT_EQ(refused.connect(), gloox::ConnConnectionRefused);
    VKMXPTcpSocket unknown(&handler, "no-such-host.invalid", port, nullptr, In(5));
    EXPECT_EQ(unknown.connect(), gloox::ConnDnsError);
    EXPECT_EQ(handler.connects, 0);
    EXPECT_EQ(handler.disconnects.size(), 2U);
}

TEST(TcpSocket, GivesUpAConnectThatHangsAtItsDeadline)
{
    // Connections beyond the backlog get no answer.
    Listener listener(0);
    std::vector<std::unique_ptr<VKMXPTcpSocket>> fillers;
    Handler handler;
    for (int i = 0; i < 4; ++i) {
        fillers.push_back(std::make_unique<VKMXPTcpSocket>(&handler, "127.0.0.1", listener.Port(), nullptr,
                                                           Clock::now() + milliseconds(200)));
        fillers.back()->Open();
    }
    VKMXPTcpSocket late(&handler, "127.0.0.1", listener.Port(), nullptr, Clock::now() + milliseconds(200));
    gloox::ConnectionError result = gloox::ConnNoError;
    EXPECT_LT(Duration([&] { result = late.Open(); }), milliseconds(3000));
    EXPECT_EQ(result, gloox::ConnConnectionRefused);
}

TEST(TcpSocket, ReportsThePeersEndOnce)
{
    Listener listener;
    Handler handler;
    VKMXPTcpSocket socket(&handler, "127.0.0.1", listener.Port(), nullptr, In(5));
    ASSERT_EQ(socket.connect(), gloox::ConnNoError);
    ASSERT_EQ(::write(listener.Accept(), "hello", 5), 5);
    EXPECT_EQ(socket.recv(5000000), gloox::ConnNoError);
    EXPECT_EQ(handler.received, "hello");
    listener.ClosePeer();
    EXPECT_EQ(socket.recv(5000000), gloox::ConnStreamClosed);
    EXPECT_EQ(socket.recv(0), gloox::ConnNotConnected);
    EXPECT_EQ(handler.disconnects, std::vector<gloox::ConnectionError>{gloox::ConnStreamClosed});
}

TEST(TcpSocket, KeepsWhatASlowPeerDoesNotTakeAndNeverBlocks)
{
    Listener listener;
    Handler handler;
    vk::TrafficWait wait;
    VKMXPTcpSocket socket(&handler, "127.0.0.1", listener.Port(), &wait, In(5));
    ASSERT_EQ(socket.connect(), gloox::ConnNoError);
    socket.Watch();
    const int peer = listener.Accept();
    std::string all;
    EXPECT_LT(Duration([&] {
                  for (int i = 0; i < 200; ++i) {
                      const std::string block(100000, static_cast<char>('a' + i % 26));
                      all += block;
                      ASSERT_TRUE(socket.send(block));
                  }
              }),
              milliseconds(5000));
    std::string got;
    std::thread reader([&] {
        std::vector<char> buffer(1 << 20);
        while (got.size() < all.size()) {
            const ssize_t n = ::read(peer, buffer.data(), buffer.size());
            if (n <= 0)
                break;
            got.append(buffer.data(), static_cast<std::size_t>(n));
        }
    });
    const auto limit = Clock::now() + std::chrono::seconds(20);
    long in = 0;
    long out = 0;
    while (out < static_cast<long>(all.size()) && Clock::now() < limit) {
        wait.Wait(1000);
        ASSERT_EQ(socket.recv(0), gloox::ConnNoError);
        socket.getStatistics(in, out);
    }
    reader.join();
    EXPECT_TRUE(got == all) << "bytes lost or out of order; got " << got.size() << " of " << all.size();
}

TEST(TcpSocket, GivesUpAPeerThatTakesNothingForTooMuch)
{
    Listener listener;
    Handler handler;
    VKMXPTcpSocket socket(&handler, "127.0.0.1", listener.Port(), nullptr, In(5));
    ASSERT_EQ(socket.connect(), gloox::ConnNoError);
    listener.Accept();
    const std::string block(8U << 20, 'x');
    bool taken = true;
    for (int i = 0; i < 12 && taken; ++i)
        taken = socket.send(block);
    EXPECT_FALSE(taken) << "the memory for one slow peer is bounded";
    EXPECT_EQ(socket.recv(0), gloox::ConnIoError);
}

} // namespace
