#include "Measurements.h"
#include "Stage.h"

#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <unistd.h>

namespace {

constexpr int kLogins = 100;
constexpr int kGlooxTlsLogins = 20; // each leaks megabytes
constexpr int kWarmUp = 50;
constexpr int kCycles = 1000;

double Timed(const std::function<void()>& work)
{
    const auto start = Clock::now();
    work();
    return Microseconds(Clock::now() - start);
}

double BareLogin(int port, BareClient::Tls tls)
{
    std::unique_ptr<BareClient> client;
    return Timed([&] {
        client =
            std::make_unique<BareClient>(accounts::Jid(accounts::Bare(0)) + "/login", accounts::Bare(0), port, tls);
        client->Connect();
    });
}

struct Held
{
    double kib;
    long descriptors;
};

/// Resident memory without what the allocator only keeps for later, and open descriptors.
Held HeldNow()
{
    malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    long all = 0;
    long resident = 0;
    statm >> all >> resident;
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return {static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024,
            static_cast<long>(std::distance(begin(descriptors), end(descriptors)))};
}

Held Growth(const std::function<void()>& cycle)
{
    for (int i = 0; i < kWarmUp; ++i)
        cycle();
    const Held before = HeldNow();
    for (int i = 0; i < kCycles; ++i)
        cycle();
    const Held after = HeldNow();
    return {after.kib - before.kib, after.descriptors - before.descriptors};
}

} // namespace

Figure ConnectP50(Stage& stage)
{
    Host& host = stage.System();
    const int port = stage.Server().Port();
    std::vector<double> ours;
    std::vector<double> bare;
    for (int i = 0; i <= kLogins; ++i) {
        const double taken = Timed([&] { host.Connect("login", accounts::Host(0)); });
        host.Disconnect("login");
        const double bareTaken = BareLogin(port, BareClient::Tls::Own);
        if (i == 0)
            continue; // for warmth
        ours.push_back(taken);
        bare.push_back(bareTaken);
    }
    std::vector<double> glooxTls;
    for (int i = 0; i < kGlooxTlsLogins; ++i)
        glooxTls.push_back(BareLogin(port, BareClient::Tls::Gloox));
    Figure figure{Median(ours), Median(bare)};
    figure.note = "bare is on our TLS layer; on gloox's own: " + ShortNumber(Median(glooxTls)) + " us";
    return figure;
}

Figure ReconnectGrowth(Stage& stage)
{
    Host& host = stage.System();
    const int port = stage.Server().Port();
    const Held ours = Growth([&] {
        host.Connect("login", accounts::Host(0));
        host.Disconnect("login");
    });
    const Held bare = Growth([&] { BareLogin(port, BareClient::Tls::Own); });
    Figure figure{ours.kib, bare.kib};
    figure.note = "descriptors left: " + std::to_string(ours.descriptors);
    figure.sound = ours.descriptors == 0;
    return figure;
}
