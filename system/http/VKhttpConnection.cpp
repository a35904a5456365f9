#include "VKhttpConnection.h"

namespace vk {

namespace {

constexpr std::size_t kLongestAnswer = std::size_t{1} << 20;
constexpr long kIdleSeconds = 3600; // how long a connection may rest before it is made anew

std::size_t TakeBody(char* data, std::size_t size, std::size_t count, void* target)
{
    auto& body = *static_cast<std::string*>(target);
    if (body.size() + size * count > kLongestAnswer)
        return 0; // ends the request with a write error
    body.append(data, size * count);
    return size * count;
}

} // namespace

void HttpConnection::SetOptions()
{
    m_curl.Set(CURLOPT_HTTP_VERSION,
               static_cast<long>(m_options.http2 ? CURL_HTTP_VERSION_2TLS : CURL_HTTP_VERSION_1_1));
    m_curl.Set(CURLOPT_POST, 1L);
    m_curl.Set(CURLOPT_CONNECTTIMEOUT_MS, m_options.timeoutMs);
    m_curl.Set(CURLOPT_TIMEOUT_MS, m_options.timeoutMs);
    m_curl.Set(CURLOPT_MAXAGE_CONN, kIdleSeconds);
    m_curl.Set(CURLOPT_TCP_KEEPALIVE, 1L);
    m_curl.Set(CURLOPT_USERAGENT, "VardockClient");
    if (!m_options.caBundle.empty())
        m_curl.Set(CURLOPT_CAINFO, m_options.caBundle.c_str());
    m_curl.SetText(CURLOPT_SSLCERT, m_options.clientCertificate.c_str());
    m_curl.SetText(CURLOPT_SSLKEY, m_options.clientKey.c_str());
    m_curl.Set(CURLOPT_KEYPASSWD, m_options.passPhrase.c_str()); // also an empty one, lest somebody be asked for it
    m_curl.SetText(CURLOPT_PROXY, m_options.proxy.c_str());
    m_curl.SetText(CURLOPT_PROXYUSERNAME, m_options.proxyUser.c_str());
    m_curl.SetText(CURLOPT_PROXYPASSWORD, m_options.proxyPassword.c_str());
    m_curl.Set(CURLOPT_WRITEFUNCTION, &TakeBody);
}

HttpAnswer HttpConnection::Post(const std::string& url, const std::vector<std::string>& headers,
                                const std::string& body)
{
    HttpAnswer answer;
    if (!m_curl) {
        m_curl.Open();
        if (!m_curl) {
            answer.code = CURLE_FAILED_INIT;
            answer.error = curl_easy_strerror(CURLE_FAILED_INIT);
            return answer;
        }
        SetOptions();
    }
    CurlHeaders list;
    for (const std::string& header : headers)
        list.Add(header);
    char details[CURL_ERROR_SIZE] = "";
    m_curl.Set(CURLOPT_URL, url.c_str());
    m_curl.Set(CURLOPT_HTTPHEADER, list.get());
    m_curl.Set(CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
    m_curl.Set(CURLOPT_POSTFIELDS, body.c_str());
    m_curl.Set(CURLOPT_WRITEDATA, &answer.body);
    m_curl.Set(CURLOPT_ERRORBUFFER, details);

    const CURLcode code = m_curl.Perform();
    answer.code = code;
    answer.status = m_curl.ResponseCode();
    if (code != CURLE_OK)
        answer.error = *details ? details : curl_easy_strerror(code);
    // They end with this call.
    m_curl.SetText(CURLOPT_ERRORBUFFER, nullptr);
    m_curl.Set(CURLOPT_HTTPHEADER, static_cast<curl_slist*>(nullptr));
    m_curl.SetText(CURLOPT_POSTFIELDS, nullptr);
    return answer;
}

} // namespace vk
