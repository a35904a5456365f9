#include "VKcurlService.h"

#include "VKcurlHttp.h"
#include "VKioFile.h"
#include "VKprintf.h"
#include "VKtime.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace {

constexpr const char* kCookieJar = "../temp/cookie.jar";
constexpr int kHeaderRoom = 10240;
constexpr int kPageRoom = 102400;
constexpr long kMostRedirects = 30; // two servers that point to each other would be asked for 300 seconds

struct CloseFile
{
    void operator()(FILE* file) const { fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

/// A new file, named by the second; names that other uploads of this second have are left to them.
File MakeUploadFile(std::string& path)
{
    File file;
    for (long number = VKutilNow(); !file; ++number) {
        path = "../temp/VKFileUpload." + std::to_string(number);
        file.reset(fopen(path.c_str(), "wxe"));
        if (!file && errno != EEXIST)
            break;
    }
    return file;
}

/// Each line of a text that is not empty.
template <class Take> void ForEachLine(std::string_view text, Take&& take)
{
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        if (end > 0)
            take(std::string(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

} // namespace

VKcurlService::VKcurlService(bool keepPage) : m_timeoutSeconds(vk::kHttpTimeoutSeconds)
{
    InitVdkBuffer(&m_header, kHeaderRoom);
    InitVdkBuffer(&m_page, keepPage ? kPageRoom : 0);
}

VKcurlService::~VKcurlService()
{
    EmptyVdkBuffer(&m_header);
    EmptyVdkBuffer(&m_page);
}

bool VKcurlService::OpenSession()
{
    if (m_bOpen)
        return true;
    m_curl.Open();
    m_iFirstRequest = 1;
    m_bOpen = static_cast<bool>(m_curl);
    return m_bOpen;
}

bool VKcurlService::CloseSession()
{
    m_curl.Close();
    m_bOpen = false;
    return true;
}

/// The options that all requests of a session share.
void VKcurlService::Begin(const std::string& url, const Route& route)
{
    ResetVdkBuffer(&m_header);
    ResetVdkBuffer(&m_page);
    // What an earlier request set is set anew or cleared. Not curl_easy_reset(), which drops the list of cookie files.
    m_curl.Set(CURLOPT_HTTPGET, 1L);
    m_curl.SetText(CURLOPT_CUSTOMREQUEST, nullptr);
    const std::string proxyLogin =
        route.proxyUser && *route.proxyUser
            ? printfToString("%s:%s", route.proxyUser, route.proxyPassword ? route.proxyPassword : "")
            : std::string();
    m_curl.SetText(CURLOPT_PROXY, route.proxy);
    m_curl.SetText(CURLOPT_PROXYUSERPWD, proxyLogin.c_str());
    m_curl.SetText(CURLOPT_COOKIE, route.cookie);
    m_curl.SetText(CURLOPT_REFERER, route.referer);
    m_curl.Set(CURLOPT_URL, url.c_str());
    m_curl.Set(CURLOPT_VERBOSE, 0L);
    m_curl.Set(CURLOPT_FOLLOWLOCATION, 1L);
    m_curl.Set(CURLOPT_MAXREDIRS, kMostRedirects);
    m_curl.Set(CURLOPT_AUTOREFERER, 1L);
    m_curl.Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_0));
    m_curl.Set(CURLOPT_USERAGENT, "Mozilla/4.0 (compatible; MSIE 5.01; Windows NT 5.0)");
    m_curl.Set(CURLOPT_SSL_VERIFYPEER, 0L);
    m_curl.Set(CURLOPT_SSL_VERIFYHOST, 0L);
    m_curl.Set(CURLOPT_CAINFO, route.caPath && *route.caPath ? route.caPath : vk::kDefaultCaBundle);
    m_curl.Set(CURLOPT_HEADERFUNCTION, &Curl_GetCallBackResult);
    m_curl.Set(CURLOPT_HEADERDATA, &m_header);
    m_curl.Set(CURLOPT_WRITEFUNCTION, &Curl_GetCallBackResult);
    m_curl.Set(CURLOPT_WRITEDATA, &m_page);
    m_sentHeaders.Clear();
    m_sentHeaders.AddAll(m_headers);
    ForEachLine(route.headers ? route.headers : "", [this](const std::string& line) { m_sentHeaders.Add(line); });
    m_curl.Set(CURLOPT_HTTPHEADER, m_sentHeaders.get());
    m_curl.Set(CURLOPT_TIMEOUT, m_timeoutSeconds);
    if (m_bCookies && m_iFirstRequest)
        m_curl.Set(CURLOPT_COOKIEFILE, kCookieJar);
}

int VKcurlService::Perform()
{
    m_iFirstRequest = 0;
    return m_curl.Perform();
}

int VKcurlService::SendRequest(HttpMethType method, const std::string& url, const std::string& body, const Route& route)
{
    if (!OpenSession())
        return CURLE_FAILED_INIT;
    if (method == PUT) {
        // An empty stream cannot be made of memory; the size of 0 keeps it from being read.
        std::string content = body.empty() ? std::string(1, '\0') : body;
        const File file(fmemopen(content.data(), content.size(), "r"));
        return file ? SendFile(url, file.get(), static_cast<long>(body.size()), route) : CURLE_OUT_OF_MEMORY;
    }
    Begin(url, route);
    if (method == POST) {
        m_curl.Set(CURLOPT_POST, 1L);
        m_curl.Set(CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
        m_curl.Set(CURLOPT_POSTFIELDS, body.c_str());
    }
    if (method == DELETE)
        m_curl.Set(CURLOPT_CUSTOMREQUEST, "DELETE");
    return Perform();
}

int VKcurlService::SendRequests(HttpMethType method, const std::string& url, std::vector<std::string>& parameters,
                                const Route& route)
{
    std::string whole;
    if (method != POST && method != PUT) { // a record without a method is a GET
        EncodeUrlArguments(parameters, url, whole);
        return SendRequest(method, whole, "", route);
    }
    EncodeUrlArguments(parameters, "", whole);
    return SendRequest(method, url, whole.empty() ? whole : whole.substr(1), route);
}

int VKcurlService::SendFile(const std::string& url, FILE* file, long size, const Route& route)
{
    Begin(url, route);
    m_curl.Set(CURLOPT_UPLOAD, 1L); // a PUT
    m_curl.Set(CURLOPT_READDATA, file);
    m_curl.Set(CURLOPT_INFILESIZE, size);
    return Perform();
}

bool VKcurlService::SendMessage(http_service* service)
{
    if (!service || !service->url || !OpenSession())
        return false;
    std::string url(service->url);
    std::replace(url.begin(), url.end(), '\\', '/');
    const Route route{nullptr,         service->proxy,   service->proxy_user, service->proxy_password,
                      service->cookie, service->referer, service->headers};

    int code;
    if (service->method == PUT)
        code = service->upload_file && *service->upload_file ? PutFile(url, service->upload_file, route)
                                                             : PutParameters(service, url, route);
    else {
        std::vector<std::string> parameters;
        for (int i = 0; service->params && i < service->param_count; ++i)
            parameters.emplace_back(service->params[i] ? service->params[i] : "");
        code = SendRequests(static_cast<HttpMethType>(service->method), url, parameters, route);
    }
    vk::SetHttpText(service->result, m_page.data);
    vk::SetHttpText(service->result_header, m_header.data);
    return code == CURLE_OK;
}

int VKcurlService::PutFile(const std::string& url, const char* path, const Route& route)
{
    const File file(fopen(path, "re"));
    return file ? SendFile(url, file.get(), VKioFile::GetSize(path), route) : CURLE_READ_ERROR;
}

/// The parameters go by way of a file, so that a body of any size costs no memory in libcurl.
int VKcurlService::PutParameters(http_service* service, const std::string& url, const Route& route)
{
    std::string path;
    const std::string body = vk::EncodeHttpPairs(service->params, service->param_count);
    File file = MakeUploadFile(path);
    if (!file)
        return CURLE_READ_ERROR;
    const bool written = fwrite(body.data(), 1, body.size(), file.get()) == body.size();
    const bool flushed = fclose(file.release()) == 0;
    const int code = written && flushed ? PutFile(url, path.c_str(), route) : CURLE_READ_ERROR;
    if (VKioFile::IsExisting(path))
        unlink(path.c_str());
    return code;
}

bool VKcurlService::EncodeUrlArguments(http_service* service, VDK_BUFFER* out)
{
    return AppendDataToVdkBuffer(out, vk::EncodeHttpPairs(service->params, service->param_count).c_str()) == 0;
}

bool VKcurlService::EncodeUrlArguments(std::vector<std::string>& parameters, const std::string& url, std::string& out)
{
    std::vector<const char*> texts;
    for (const std::string& parameter : parameters)
        texts.push_back(parameter.c_str());
    out = url;
    if (!texts.empty())
        out += (url.find('?') == std::string::npos ? "?" : "&") +
               vk::EncodeHttpPairs(texts.data(), static_cast<int>(texts.size()));
    return true;
}

int VKcurlService::DownloadFile(const char* url, FILE* stream, const Route& route)
{
    if (!url || !stream || !OpenSession())
        return CURLE_FAILED_INIT;
    Begin(url, route);
    m_curl.Set(CURLOPT_USERAGENT, "Mozilla/4.0");
    m_curl.Set(CURLOPT_WRITEFUNCTION, &Curl_GetCallBackResultFile);
    m_curl.Set(CURLOPT_WRITEDATA, stream);
    const int code = Perform();
    m_curl.Set(CURLOPT_SSL_VERIFYPEER, 1L);
    return code;
}

int VKcurlService::DownloadFile(const char* url, const char* path, const Route& route)
{
    File file(path ? fopen(path, "wb") : nullptr);
    if (!file)
        return CURLE_WRITE_ERROR;
    const int code = DownloadFile(url, file.get(), route);
    return fclose(file.release()) == 0 || code != CURLE_OK ? code : CURLE_WRITE_ERROR;
}

void VKcurlService::SetHeaders(const char* header)
{
    if (header)
        m_headers.Add(header);
}

void VKcurlService::ResetHeaders() { m_headers.Clear(); }

void VKcurlService::EnableCookies()
{
    m_bCookies = true;
    m_iFirstRequest = 1; // the next request reads the jar
}

void VKcurlService::FlushCookies()
{
    if (!m_bOpen)
        return;
    m_curl.Set(CURLOPT_COOKIEJAR, kCookieJar);
    m_curl.Set(CURLOPT_COOKIELIST, "FLUSH");
}

std::string VKcurlService::GetErrorStr(int code) const { return Curl_GetErrStr(code); }
