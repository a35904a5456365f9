#pragma once

#include "ChildProcess.h"
#include "TempDir.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// A private XMPP server on loopback for one test: the distribution's Prosody with TLS required, its own data directory
/// and a fresh certificate (scripts/lib/prosody.sh tells the rest). Starts in a tenth of a second. Not for several
/// threads at once. Throws std::runtime_error with the server's own words when it does not come up.
class ProsodyServer
{
public:
    struct Options
    {
        std::string domain = "localhost";
        /// False gives a server that speaks no TLS at all.
        bool tls = true;
        /// True keeps messages for accounts that are not there; otherwise they come back as errors.
        bool keepOffline = false;
    };

    ProsodyServer() : ProsodyServer(Options{}) {}

    /// Prepares the server; Start starts it.
    explicit ProsodyServer(Options options);
    ~ProsodyServer();
    ProsodyServer(const ProsodyServer&) = delete;
    ProsodyServer& operator=(const ProsodyServer&) = delete;

    /// Makes accounts, before or after the start: pairs of user name and password.
    void AddAccounts(const std::vector<std::pair<std::string, std::string>>& accounts);
    void AddAccount(const std::string& user, const std::string& password) { AddAccounts({{user, password}}); }

    /// Returns when the port is open. A server that has been stopped comes back on the same port.
    void Start();
    /// Ends it in order: clients are told. Returns when it has ended.
    void Stop();
    /// Ends it at once, as a crash would. Returns when it has ended.
    void Kill();
    /// Stops its process from running, connections stay open and silent; Thaw lets it go on.
    void Freeze();
    void Thaw();

    int Port() const { return m_port; }
    const std::string& Domain() const { return m_options.domain; }
    std::string Jid(const std::string& user) const { return user + "@" + m_options.domain; }
    /// The certificate that clients get to see, PEM; as it signs itself, it also serves as the CA bundle.
    std::string CertificateFile() const { return m_dir / "server.crt"; }
    /// What the server has logged since its last start.
    std::string Log() const { return m_dir.Read("prosody.log"); }

private:
    void Prepare();
    void Spawn();
    bool WaitUntilReady();
    void End(int signal);
    void Script(const std::string& command, const std::string& input) const;

    Options m_options;
    TempDir m_dir;
    int m_port = 0;
    std::optional<ChildProcess> m_process;
    bool m_wasReady = false;
};
