#include "Measurements.h"
#include "Stage.h"
#include "VKMXPCoreManager.h"

#include <thread>

namespace {

constexpr int kWarmUp = 50;
/// Between two messages, for all threads to come to rest.
constexpr std::chrono::microseconds kRest{300};

/// Latencies in microseconds, message by message.
struct Times
{
    std::vector<double> arrival;
    std::vector<double> call;
};

struct Handoff
{
    Times ours;
    Times bare;
};

template <class SendOne> void TimeOne(Inbox& inbox, Times& times, SendOne send)
{
    const unsigned long next = inbox.Count() + 1;
    const auto start = Clock::now();
    send();
    const auto returned = Clock::now();
    times.arrival.push_back(Microseconds(inbox.Await(next) - start));
    times.call.push_back(Microseconds(returned - start));
    std::this_thread::sleep_for(kRest);
}

/// The driver and the bare client take turns, connection by connection, to the same device with the same bytes.
Handoff Run(Stage& stage, int connections, int idleSessions, int samples)
{
    Host& host = stage.System();
    Inbox inbox;
    const auto toInbox = [&inbox](const std::string& from, const std::string& body) { inbox.Put(from, body); };
    Clients devices(stage);
    devices.Add(accounts::Device(0), "mxp", toInbox);
    const std::string device = accounts::Jid(accounts::Device(0));

    Clients bare(stage);
    for (int i = 0; i < connections; ++i)
        bare.Add(accounts::Bare(i), "bench", {});
    Handoff warm;
    Handoff result;
    const auto turn = [&](Handoff& noted, int number) {
        BenchMessage message = host.Message(number % connections, 0);
        TimeOne(inbox, noted.ours, [&] { host.Send(message); });
        const std::string bytes = inbox.LastBody();
        BareClient& client = bare[static_cast<std::size_t>(number % connections)];
        TimeOne(inbox, noted.bare, [&] { client.Send(device, bytes); });
    };
    for (int i = 0; i < connections; ++i)
        turn(warm, i); // the first message connects
    for (int i = 0; i < idleSessions; ++i) {
        const std::string idle = accounts::Jid(accounts::Device(accounts::kDevices + i));
        host.Manager().StartC2CSession(idle, Host::Connection(0), "mxp", false);
        bare[0].OpenSession(idle);
    }
    for (int i = 0; i < kWarmUp; ++i)
        turn(warm, i);
    for (int i = 0; i < samples; ++i)
        turn(result, i);
    for (int i = 0; i < connections; ++i)
        host.Disconnect(Host::Connection(i));
    return result;
}

/// One run serves the figures that are different views of it.
const Handoff& PlainRun(Stage& stage)
{
    static const Handoff run = Run(stage, 1, 0, 2000);
    return run;
}

Figure MedianOf(const Handoff& run) { return {Median(run.ours.arrival), Median(run.bare.arrival)}; }

} // namespace

Figure HandoffP50(Stage& stage) { return MedianOf(PlainRun(stage)); }

Figure HandoffP99(Stage& stage)
{
    const Handoff& run = PlainRun(stage);
    return {Quantile(run.ours.arrival, 0.99), Quantile(run.bare.arrival, 0.99)};
}

Figure HandoffP50TenConnections(Stage& stage) { return MedianOf(Run(stage, accounts::kHosts, 0, 1000)); }

Figure HandoffP50ThousandSessions(Stage& stage) { return MedianOf(Run(stage, 1, 1000, 1000)); }

Figure SendCallP50(Stage& stage)
{
    const Handoff& run = PlainRun(stage);
    return {Median(run.ours.call), Median(run.bare.call)};
}
