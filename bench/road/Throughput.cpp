#include "Arrivals.h"
#include "Measurements.h"
#include "Stage.h"
#include "VKMXPCoreManager.h"
#include "VKMXPmMessage.h"

namespace {

constexpr int kMessages = 4000;
constexpr int kRounds = 3;

template <class SendAll> double MessagesASecond(Arrivals& arrivals, SendAll sendAll)
{
    arrivals.Clear();
    const auto start = Clock::now();
    sendAll();
    return kMessages / Seconds(arrivals.Await(kMessages) - start);
}

void ThroughDriver(Host& host)
{
    for (int i = 0; i < kMessages; ++i) {
        BenchMessage message = host.Message(0, i % accounts::kDevices);
        host.Send(message);
    }
}

/// The same messages without the driver: packets straight into the core manager.
void ThroughManager(Host& host)
{
    for (int i = 0; i < kMessages; ++i) {
        const int device = i % accounts::kDevices;
        const BenchMessage message = host.Message(0, device);
        auto packet = std::make_unique<VKMXPmMessage>();
        packet->m_strJobID = message.file.strJobID;
        packet->m_strSender = message.file.strSender;
        packet->m_strSubject = message.file.strSubject;
        packet->m_strBody = message.file.strBody;
        packet->m_bValid = true;
        int sequence = 0;
        if (!host.Manager().Send(packet.get(), accounts::Jid(accounts::Device(device)), Host::Connection(0), sequence))
            throw std::runtime_error("the core manager took no packet");
        static_cast<void>(packet.release()); // the session's now
    }
}

/// One way into the system, and the bare client beside it with the envelopes that it made.
struct Road
{
    Arrivals& arrivals;
    BareClient& client;
    std::vector<double> ours; // messages a second
    std::vector<double> bare;
    std::size_t envelopes = 0; // of the last round

    template <class SendAll> void Round(SendAll sendAll)
    {
        ours.push_back(MessagesASecond(arrivals, sendAll));
        const auto sent = arrivals.Envelopes();
        envelopes = sent.size();
        bare.push_back(MessagesASecond(arrivals, [&] {
            for (const auto& [device, body] : sent)
                client.Send(accounts::Jid(accounts::Device(device)), body);
        }));
    }

    std::string Note() const
    {
        return ShortNumber(static_cast<double>(kMessages) / static_cast<double>(envelopes)) + " messages an envelope";
    }
};

} // namespace

Figure Throughput(Stage& stage)
{
    Host& host = stage.System();
    Arrivals arrivals;
    Clients devices(stage);
    for (int i = 0; i < accounts::kDevices; ++i)
        devices.Add(accounts::Device(i), "mxp",
                    [&arrivals, i](const std::string&, const std::string& body) { arrivals.Put(i, body); });
    Clients bare(stage);
    BareClient& client = bare.Add(accounts::Bare(0), "bench", {});

    Road driver{arrivals, client, {}, {}};
    Road manager{arrivals, client, {}, {}};
    for (int round = 0; round <= kRounds; ++round) {
        driver.Round([&] { ThroughDriver(host); });
        manager.Round([&] { ThroughManager(host); });
        if (round == 0) { // for warmth, the connection and the sessions
            driver.ours.clear();
            driver.bare.clear();
            manager.ours.clear();
            manager.bare.clear();
        }
    }
    host.Disconnect(Host::Connection(0));
    Figure figure{Median(driver.ours), Median(driver.bare)};
    figure.note = driver.Note() + "; packets straight into the core manager: " + ShortNumber(Median(manager.ours)) +
                  "/s, " + ShortNumber(Median(manager.ours) / Median(manager.bare)) + " x bare, " + manager.Note();
    return figure;
}
