#include "Measurements.h"
#include "Stage.h"
#include "VKMXPCoreManager.h"

#include <malloc.h>

namespace {

constexpr int kSessions = 10000;
constexpr int kRounds = 1000;

/// What ten thousand idle sessions cost.
struct Crowd
{
    double roundTime = 0;   // microseconds, median
    double sessionHeap = 0; // bytes
};

double HeapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

template <class Open, class Round> Crowd Measure(Open open, Round round)
{
    Crowd crowd;
    const double before = HeapInUse();
    for (int i = 0; i < kSessions; ++i)
        open(accounts::Jid(accounts::Device(accounts::kDevices + i)));
    for (int i = 0; i < 10; ++i)
        round(); // what opening left to do
    crowd.sessionHeap = (HeapInUse() - before) / kSessions;
    std::vector<double> times;
    for (int i = 0; i < kRounds; ++i) {
        const auto start = Clock::now();
        round();
        times.push_back(Microseconds(Clock::now() - start));
    }
    crowd.roundTime = Median(times);
    return crowd;
}

struct Crowds
{
    Crowd ours;
    Crowd bare;
};

const Crowds& BothCrowds(Stage& stage)
{
    static const Crowds crowds = [&stage] {
        Crowds made;
        Host& host = stage.System();
        host.Connect("crowd", accounts::Host(0));
        made.ours = Measure([&](const std::string& jid) { host.Manager().StartC2CSession(jid, "crowd", "mxp", false); },
                            [&] { host.Manager().RunRound(); });
        host.Disconnect("crowd");

        BareClient client(accounts::Jid(accounts::Bare(0)) + "/crowd", accounts::Bare(0), stage.Server().Port());
        client.Connect();
        made.bare = Measure([&](const std::string& jid) { client.OpenSession(jid); }, [&] { client.Pump(); });
        return made;
    }();
    return crowds;
}

} // namespace

Figure RoundOverTenThousand(Stage& stage)
{
    const Crowds& crowds = BothCrowds(stage);
    return {crowds.ours.roundTime, crowds.bare.roundTime, "bare: one look at the client's socket"};
}

Figure SessionBytes(Stage& stage)
{
    const Crowds& crowds = BothCrowds(stage);
    return {crowds.ours.sessionHeap - crowds.bare.sessionHeap, crowds.bare.sessionHeap,
            "bare: one gloox message session, which each of ours has as well and which is not counted"};
}
