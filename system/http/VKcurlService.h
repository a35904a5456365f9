#pragma once

#include "VKbuffer.h"
#include "VKcurlHandle.h"
#include "VKhttpService.h"

#include <cstdio>
#include <string>
#include <vector>

namespace vk {

/// What a request needs besides its address; null or empty for none.
struct HttpRoute
{
    const char* caPath = nullptr; ///< "../config/ca-bundle.crt" when there is none
    const char* proxy = nullptr;  ///< "host:port"
    const char* proxyUser = nullptr;
    const char* proxyPassword = nullptr;
    const char* cookie = nullptr;
    const char* referer = nullptr;
    const char* headers = nullptr; ///< one on each line, for this request only
};

} // namespace vk

/// An HTTP session: cookies, custom headers, a proxy, upload and download, over HTTP 1.0 and with redirects followed.
/// The peer's certificate is not checked on this route, on purpose; whoever needs that uses vk::HttpConnection.
/// Requests return libcurl's code, 0 for an answer of whatever status (see GetReturnCode), and end after 300 seconds.
/// Nothing is thrown. One thread.
///
/// A header with a key in it is not sent on to another host that a redirect names.
class VKcurlService
{
public:
    enum HttpMethType { GET = 1, POST = 2, PUT = 3, DELETE = 4 };

    using Route = vk::HttpRoute;

    /// `keepPage` makes room for a large page at once.
    explicit VKcurlService(bool keepPage = true);
    virtual ~VKcurlService();
    VKcurlService(const VKcurlService&) = delete;
    VKcurlService& operator=(const VKcurlService&) = delete;

    virtual bool OpenSession(); ///< false when memory is out
    virtual bool CloseSession();

    /// Sends what the record tells and puts page and header lines into it; opens the session when it must. "\" in the
    /// URL becomes "/". False when there was no answer.
    virtual bool SendMessage(http_service* service);

    /// Appends the record's parameters, encoded and joined; false when memory is out.
    virtual bool EncodeUrlArguments(http_service* service, VDK_BUFFER* out);
    /// The URL with the texts "name=value" behind "?", encoded and joined; the URL alone when there are none.
    virtual bool EncodeUrlArguments(std::vector<std::string>& parameters, const std::string& url, std::string& out);

    bool IsSessionOpen() const { return m_bOpen; }
    int SendRequest(HttpMethType method, const std::string& url, const std::string& body, const Route& route = {});
    /// The parameters, texts "name=value", go into the URL of a GET or DELETE, else into the body.
    int SendRequests(HttpMethType method, const std::string& url, std::vector<std::string>& parameters,
                     const Route& route = {});
    int DownloadFile(const char* url, FILE* stream, const Route& route = {});
    /// Into a new file at `path`.
    int DownloadFile(const char* url, const char* path, const Route& route = {});

    /// Adds one header to those that every request from now on carries.
    void SetHeaders(const char* header);
    void ResetHeaders();

    /// Cookies are kept for the session, and those of "../temp/cookie.jar" with them.
    void EnableCookies();
    /// Writes the cookies to that file.
    void FlushCookies();

    std::string GetPage() const { return m_page.data ? m_page.data : ""; }
    std::string GetHeader() const { return m_header.data ? m_header.data : ""; }
    int GetReturnCode() const { return static_cast<int>(m_curl.ResponseCode()); }
    std::string GetErrorStr(int code) const;

    /// In place of 300 seconds.
    void SetTimeout(long seconds) { m_timeoutSeconds = seconds; }

private:
    void Begin(const std::string& url, const Route& route);
    int Perform();
    int SendFile(const std::string& url, FILE* file, long size, const Route& route);
    int PutParameters(http_service* service, const std::string& url, const Route& route);
    int PutFile(const std::string& url, const char* path, const Route& route);

    vk::CurlHandle m_curl{false}; ///< closed until OpenSession
    vk::CurlHeaders m_headers;
    int m_iFirstRequest = 1;
    VDK_BUFFER m_header{};
    VDK_BUFFER m_page{};
    bool m_bOpen = false;
    bool m_bCookies = false;
    long m_timeoutSeconds;
    vk::CurlHeaders m_sentHeaders; ///< m_headers and those of the one request
};
