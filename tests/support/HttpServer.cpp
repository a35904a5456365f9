#include "HttpServer.h"

#include <algorithm>
#include <sstream>

namespace vktest {

namespace {

/// False for a connection that ended within the head.
bool ReadHead(LoopbackServer::Peer& peer, HttpServer::Request& request, std::string& rest)
{
    std::size_t end;
    while ((end = rest.find("\r\n\r\n")) == std::string::npos) {
        const std::string more = peer.Read();
        if (more.empty())
            return false;
        rest += more;
    }
    std::istringstream head(rest.substr(0, end));
    rest.erase(0, end + 4);
    head >> request.method >> request.target >> request.version;
    std::string line;
    std::getline(head, line);
    while (std::getline(head, line)) {
        std::string name = line.substr(0, line.find(':'));
        std::transform(name.begin(), name.end(), name.begin(), ::tolower);
        std::string value = line.substr(std::min(line.size(), name.size() + 1));
        value.erase(0, value.find_first_not_of(' '));
        while (!value.empty() && value.back() == '\r')
            value.pop_back();
        request.headers[name] = value;
    }
    return true;
}

void ReadBody(LoopbackServer::Peer& peer, HttpServer::Request& request, std::string& rest)
{
    if (request.Header("transfer-encoding") == "chunked") {
        for (;;) {
            std::size_t end;
            while ((end = rest.find("\r\n")) == std::string::npos)
                rest += peer.ReadWhole(1);
            const std::size_t size = std::stoul(rest.substr(0, end), nullptr, 16);
            rest.erase(0, end + 2);
            if (rest.size() < size + 2)
                rest += peer.ReadWhole(size + 2 - rest.size());
            request.body += rest.substr(0, size);
            rest.erase(0, size + 2);
            if (size == 0)
                return;
        }
    }
    const std::string length = request.Header("content-length");
    const std::size_t size = length.empty() ? 0 : std::stoul(length);
    if (rest.size() < size)
        rest += peer.ReadWhole(size - rest.size());
    request.body = rest.substr(0, size);
}

} // namespace

HttpServer::HttpServer(Handler handler, std::optional<LoopbackServer::Tls> tls)
    : m_handler(std::move(handler)), m_tls(tls.has_value()),
      m_server([this](LoopbackServer::Peer& peer) { Serve(peer); }, std::move(tls))
{
}

void HttpServer::Serve(LoopbackServer::Peer& peer)
{
    Request request;
    request.connection = peer.Number();
    std::string rest;
    if (!ReadHead(peer, request, rest))
        return;
    ReadBody(peer, request, rest);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_requests.push_back(request);
    }
    const Response response = m_handler(request);
    if (response.status == 0) { // no answer at all
        peer.AwaitClose();
        return;
    }
    std::string text = "HTTP/1.1 " + std::to_string(response.status) +
                       " Status\r\nConnection: close\r\nContent-Length: " + std::to_string(response.body.size()) +
                       "\r\n";
    for (const std::string& header : response.headers)
        text += header + "\r\n";
    peer.Write(text + "\r\n" + response.body);
}

std::vector<HttpServer::Request> HttpServer::Requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

HttpServer::Request HttpServer::Last() const
{
    const std::vector<Request> all = Requests();
    return all.empty() ? Request{} : all.back();
}

} // namespace vktest
