#include "Measurements.h"
#include "Stage.h"
#include "VKMXPCoreManager.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int kSessions = 1000;
constexpr std::chrono::seconds kSettle{1};
constexpr std::chrono::seconds kWatch{5};

double CpuSeconds()
{
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

double WatchedShare()
{
    std::this_thread::sleep_for(kSettle);
    const auto start = Clock::now();
    const double before = CpuSeconds();
    std::this_thread::sleep_for(kWatch);
    return 100 * (CpuSeconds() - before) / Seconds(Clock::now() - start);
}

std::string IdleJid(int number) { return accounts::Jid(accounts::Device(accounts::kDevices + number)); }

double SystemShare(int port, bool connected)
{
    Host host(port, 0);
    if (connected) {
        host.Connect("idle", accounts::Host(0));
        for (int i = 0; i < kSessions; ++i)
            host.Manager().StartC2CSession(IdleJid(i), "idle", "mxp", false);
    }
    return WatchedShare();
}

double BareShare(int port)
{
    BareClient client(accounts::Jid(accounts::Bare(0)) + "/idle", accounts::Bare(0), port);
    client.Connect();
    for (int i = 0; i < kSessions; ++i)
        client.OpenSession(IdleJid(i));
    PumpThread pump;
    pump.Add(client);
    return WatchedShare();
}

/// This program again, with the idle process as all that it does.
class IdleProcess
{
public:
    IdleProcess(const std::string& kind, int port)
    {
        if (pipe(m_pipe.data()) != 0 || (m_pid = fork()) < 0)
            throw std::system_error(errno, std::generic_category(), "an idle process");
        if (m_pid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            dup2(m_pipe[1], STDOUT_FILENO);
            close(m_pipe[0]);
            execl("/proc/self/exe", "vkbench", "--idle-process", kind.c_str(), std::to_string(port).c_str(), nullptr);
            _exit(127);
        }
        close(m_pipe[1]);
    }
    IdleProcess(const IdleProcess&) = delete;
    IdleProcess& operator=(const IdleProcess&) = delete;
    ~IdleProcess()
    {
        close(m_pipe[0]);
        waitpid(m_pid, nullptr, 0);
    }

    /// Waits for the end. Throws std::runtime_error when there was no number.
    double Share()
    {
        std::string text;
        std::array<char, 64> block;
        for (ssize_t got; (got = read(m_pipe[0], block.data(), block.size())) > 0;)
            text.append(block.data(), static_cast<std::size_t>(got));
        if (text.empty())
            throw std::runtime_error("an idle process ended without a result");
        return std::stod(text);
    }

private:
    std::array<int, 2> m_pipe{};
    pid_t m_pid = -1;
};

struct Shares
{
    double sessions;
    double none;
    double bare;
};

/// All three at once: they do nothing, so they do not disturb each other.
const Shares& AllShares(Stage& stage)
{
    static const Shares shares = [&stage] {
        const int port = stage.Server().Port();
        IdleProcess sessions("sessions", port);
        IdleProcess none("none", port);
        IdleProcess bare("bare", port);
        return Shares{sessions.Share(), none.Share(), bare.Share()};
    }();
    return shares;
}

} // namespace

int RunIdleProcess(const std::string& kind, int port)
{
    const double share = kind == "bare" ? BareShare(port) : SystemShare(port, kind == "sessions");
    std::printf("%.6f\n", share);
    return 0;
}

Figure IdleCpu(Stage& stage) { return {AllShares(stage).sessions, AllShares(stage).bare}; }

Figure IdleCpuNoConnection(Stage& stage) { return {AllShares(stage).none, AllShares(stage).bare}; }
