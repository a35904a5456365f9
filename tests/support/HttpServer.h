#pragma once

#include "LoopbackServer.h"

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace vktest {

/// A small HTTP/1 endpoint on loopback, with or without TLS: keeps what it is asked and answers as a test wants. One
/// request a connection.
class HttpServer
{
public:
    struct Request
    {
        std::string method, target, version, body;
        std::map<std::string, std::string> headers; ///< names in lower case
        int connection = 0;

        std::string Header(const std::string& name) const
        {
            const auto found = headers.find(name);
            return found == headers.end() ? std::string() : found->second;
        }
    };
    struct Response
    {
        int status = 200;
        std::string body = {};
        std::vector<std::string> headers = {};
    };
    using Handler = std::function<Response(const Request&)>;

    explicit HttpServer(Handler handler, std::optional<LoopbackServer::Tls> tls = std::nullopt);

    int Port() const { return m_server.Port(); }
    std::string Url(const std::string& target = "/") const
    {
        return (m_tls ? "https" : "http") + std::string("://127.0.0.1:") + std::to_string(Port()) + target;
    }
    std::vector<Request> Requests() const;
    Request Last() const;

private:
    void Serve(LoopbackServer::Peer& peer);

    Handler m_handler;
    bool m_tls;
    mutable std::mutex m_mutex;
    std::vector<Request> m_requests; // guarded by m_mutex
    LoopbackServer m_server;         // last: its thread uses the others
};

} // namespace vktest
