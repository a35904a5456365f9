#include "Stage.h"

namespace {

/// Rows in the tables of receivers and sessions: the devices and a thousand that are idle.
constexpr int kReceivers = 1000;

} // namespace

ProsodyServer& Stage::Server()
{
    if (!m_server) {
        m_server = std::make_unique<ProsodyServer>();
        std::vector<std::pair<std::string, std::string>> all;
        const auto add = [&all](const std::string& user) { all.emplace_back(user, user); };
        for (int i = 0; i < accounts::kHosts; ++i) {
            add(accounts::Host(i));
            add(accounts::Bare(i));
        }
        for (int i = 0; i < accounts::kDevices; ++i)
            add(accounts::Device(i));
        m_server->AddAccounts(all);
        m_server->Start();
    }
    return *m_server;
}

Host& Stage::System()
{
    if (!m_host)
        m_host = std::make_unique<Host>(Server().Port(), kReceivers);
    return *m_host;
}

BareClient& Clients::Add(const std::string& user, const std::string& resource, BareClient::Handler handler)
{
    auto client = std::make_unique<BareClient>(accounts::Jid(user) + "/" + resource, user, m_port);
    client->OnMessage(std::move(handler));
    client->Connect();
    m_pump.Add(*client);
    m_clients.push_back(std::move(client));
    return *m_clients.back();
}
