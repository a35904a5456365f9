#include "ProsodyServer.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

ProsodyServer::ProsodyServer(Options options) : m_options(std::move(options)) { Prepare(); }

ProsodyServer::~ProsodyServer() { Kill(); }

void ProsodyServer::Prepare()
{
    Script("PROSODY_DOMAIN=" + m_options.domain + " PROSODY_TLS=" + (m_options.tls ? "required" : "off") +
               " PROSODY_OFFLINE=" + (m_options.keepOffline ? "on" : "off") + " prosody_prepare " + m_dir.Path().string(),
           "");
    m_port = std::stoi(m_dir.Read("port"));
}

void ProsodyServer::AddAccounts(const std::vector<std::pair<std::string, std::string>>& accounts)
{
    std::string lines;
    for (const auto& [user, password] : accounts)
        lines += user + " " + password + "\n";
    Script("prosody_accounts " + m_dir.Path().string(), lines);
}

void ProsodyServer::Start()
{
    if (m_pid > 0)
        return;
    Spawn();
    if (!WaitUntilReady() && !m_wasReady) {
        // Somebody else was quicker to take the port: try another, unless clients know this one already.
        Kill();
        Prepare();
        Spawn();
        WaitUntilReady();
    }
    if (!m_wasReady)
        throw std::runtime_error("prosody did not start: " + m_dir.Read("prosody.out") + Log());
}

void ProsodyServer::Spawn()
{
    m_dir.Write("prosody.log", "");
    const std::string config = m_dir / "prosody.cfg.lua";
    const std::string output = m_dir / "prosody.out";
    m_pid = fork();
    if (m_pid < 0)
        throw std::system_error(errno, std::generic_category(), "fork");
    if (m_pid == 0) {
        // It must not outlive a test program that crashed.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int out = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        dup2(out, STDOUT_FILENO);
        dup2(out, STDERR_FILENO);
        execlp("prosody", "prosody", "-F", "--config", config.c_str(), nullptr);
        _exit(127);
    }
}

/// Watches the server's log for the line that says that its port is open, for ten seconds at most.
bool ProsodyServer::WaitUntilReady()
{
    const std::string ready = "Activated service 'c2s' on [127.0.0.1]:" + std::to_string(m_port);
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < giveUp) {
        const std::string log = Log();
        if (log.find(ready) != std::string::npos)
            return m_wasReady = true;
        if (log.find("Failed to open server port") != std::string::npos)
            break;
        if (waitpid(m_pid, nullptr, WNOHANG) == m_pid) {
            m_pid = -1;
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    if (m_wasReady)
        throw std::runtime_error("prosody did not come back on port " + std::to_string(m_port) + ": " + Log());
    return false;
}

void ProsodyServer::End(int signal)
{
    if (m_pid <= 0)
        return;
    Thaw();
    kill(m_pid, signal);
    while (waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    m_pid = -1;
}

void ProsodyServer::Stop() { End(SIGTERM); }
void ProsodyServer::Kill() { End(SIGKILL); }

void ProsodyServer::Freeze()
{
    if (m_pid > 0)
        kill(m_pid, SIGSTOP);
}

void ProsodyServer::Thaw()
{
    if (m_pid > 0)
        kill(m_pid, SIGCONT);
}

/// Runs one function of the shell library with this standard input.
void ProsodyServer::Script(const std::string& command, const std::string& input) const
{
    const std::string line = "exec bash -c '. " VK_SOURCE_DIR "/scripts/lib/prosody.sh && " + command + "'";
    FILE* pipe = popen(line.c_str(), "w");
    if (pipe == nullptr)
        throw std::system_error(errno, std::generic_category(), "popen");
    const bool written = std::fwrite(input.data(), 1, input.size(), pipe) == input.size();
    if (pclose(pipe) != 0 || !written)
        throw std::runtime_error("failed: " + command);
}
