#include "ProsodyServer.h"

#include "Until.h"

#include <cstdio>
#include <stdexcept>

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
    if (m_process && !m_process->HasEnded())
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
    m_process.emplace(std::vector<std::string>{"prosody", "-F", "--config", m_dir / "prosody.cfg.lua"},
                      m_dir / "prosody.out", m_dir / "prosody.out");
}

/// Watches the server's log for the line that says that its port is open, for ten seconds at most.
bool ProsodyServer::WaitUntilReady()
{
    const std::string ready = "Activated service 'c2s' on [127.0.0.1]:" + std::to_string(m_port);
    const auto says = [this](const std::string& text) { return Log().find(text) != std::string::npos; };
    Until([&] { return says(ready) || says("Failed to open server port") || m_process->HasEnded(); },
          std::chrono::seconds(10));
    if (says(ready))
        return m_wasReady = true;
    if (m_wasReady)
        throw std::runtime_error("prosody did not come back on port " + std::to_string(m_port) + ": " + Log());
    return false;
}

void ProsodyServer::End(int signal)
{
    Thaw();
    if (m_process)
        m_process->End(signal);
}

void ProsodyServer::Stop() { End(SIGTERM); }
void ProsodyServer::Kill() { End(SIGKILL); }
void ProsodyServer::Freeze() { m_process->Send(SIGSTOP); }

void ProsodyServer::Thaw()
{
    if (m_process)
        m_process->Send(SIGCONT);
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
