#pragma once

#include "Accounts.h"
#include "BareClient.h"
#include "Host.h"
#include "Inbox.h"
#include "ProsodyServer.h"
#include "PumpThread.h"

#include <memory>
#include <string>
#include <vector>

/// What the measurements play on: a private XMPP server, the system itself, devices and bare clients. Each part is
/// made when it is first asked for.
class Stage
{
public:
    ProsodyServer& Server();
    Host& System();

private:
    std::unique_ptr<ProsodyServer> m_server;
    std::unique_ptr<Host> m_host;
};

/// Clients that are received for by one thread of theirs.
class Clients
{
public:
    explicit Clients(Stage& stage) : m_port(stage.Server().Port()) {}

    /// Logs one in. The handler runs on the thread.
    BareClient& Add(const std::string& user, const std::string& resource, BareClient::Handler handler);
    BareClient& operator[](std::size_t number) { return *m_clients[number]; }

private:
    int m_port;
    std::vector<std::unique_ptr<BareClient>> m_clients;
    PumpThread m_pump; // behind the clients, so that it ends before them
};
