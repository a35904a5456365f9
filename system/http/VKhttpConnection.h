#pragma once

#include "VKcurlHandle.h"

#include <string>
#include <vector>

namespace vk {

/// What a connection needs besides its address; empty for none.
struct HttpConnectionOptions
{
    std::string caBundle;          ///< PEM; empty for that of the system
    std::string clientCertificate; ///< PEM, with its private key
    std::string clientKey;
    std::string passPhrase;
    std::string proxy; ///< "host:port"
    std::string proxyUser;
    std::string proxyPassword;
    bool http2 = false;
    long timeoutMs = 10000; ///< for connecting, and for the whole request
};

struct HttpAnswer
{
    int code = 0;      ///< libcurl's
    long status = 0;   ///< of HTTP; 0 when there was no answer
    std::string body;  ///< at most 1 MiB
    std::string error; ///< what went wrong when the code is not 0
};

/// Requests to a service whose certificate is checked, over connections that are kept open between them (RFC 9110,
/// RFC 9113). A connection that the service has closed is replaced. Redirects are not followed: they are an answer like
/// any other. Nothing is thrown. One thread.
class HttpConnection
{
public:
    HttpConnection() = default;

    void Configure(const HttpConnectionOptions& options) { m_options = options; }
    /// POSTs the body.
    HttpAnswer Post(const std::string& url, const std::vector<std::string>& headers, const std::string& body);
    void Close() { m_curl.Close(); }

private:
    void SetOptions();

    HttpConnectionOptions m_options;
    CurlHandle m_curl{false};
};

} // namespace vk
