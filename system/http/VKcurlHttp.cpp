#include "VKcurlHttp.h"

#include "VKascii.h"
#include "VKcurlHandle.h"
#include "VKprintf.h"
#include "VKstringCopy.h"

#include <climits>
#include <cstring>
#include <string_view>

namespace {

struct Proxy
{
    const char* address;
    const char* user;
    const char* password;
};

/// A pair's name and value; without "=" the whole text is the name.
std::pair<std::string, std::string> SplitPair(std::string_view pair)
{
    const std::size_t at = pair.find('=');
    if (at == std::string_view::npos)
        return {std::string(pair), std::string()};
    return {std::string(pair.substr(0, at)), std::string(pair.substr(at + 1))};
}

struct Request
{
    const char* url;
    const char* caPath;
    VDK_BUFFER* result;
    VDK_BUFFER* headers;
    const char* extraHeader;
    Proxy proxy;
};

/// `fillBody` sets what is posted, and says libcurl's code when it cannot.
template <class FillBody> int Post(const Request& request, FillBody&& fillBody)
{
    vk::CurlHandle curl;
    if (!curl)
        return CURLE_FAILED_INIT;
    vk::CurlHeaders extra;
    curl.Set(CURLOPT_URL, request.url ? request.url : "");
    curl.Set(CURLOPT_POST, 1L);
    curl.Set(CURLOPT_VERBOSE, 0L);
    if (const CURLcode code = fillBody(curl); code != CURLE_OK)
        return code;
    curl.Set(CURLOPT_USERAGENT, "VardockClient");
    curl.Set(CURLOPT_SSL_VERIFYPEER, 1L);
    curl.Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_0));
    curl.Set(CURLOPT_CAINFO, request.caPath && *request.caPath ? request.caPath : vk::kDefaultCaBundle);
    curl.Set(CURLOPT_WRITEFUNCTION, &Curl_GetCallBackResult);
    curl.Set(CURLOPT_WRITEDATA, request.result);
    curl.Set(CURLOPT_HEADERFUNCTION, &Curl_GetCallBackResult);
    curl.Set(CURLOPT_HEADERDATA, request.headers);
    curl.Set(CURLOPT_TIMEOUT, vk::kHttpTimeoutSeconds);
    if (request.extraHeader && *request.extraHeader && extra.Add(request.extraHeader))
        curl.Set(CURLOPT_HTTPHEADER, extra.get());
    curl.SetText(CURLOPT_PROXY, request.proxy.address);
    curl.SetText(CURLOPT_PROXYUSERNAME, request.proxy.user);
    curl.SetText(CURLOPT_PROXYPASSWORD, request.proxy.password);
    return curl.Perform();
}

} // namespace

namespace vk {

std::string EncodeHttpPairs(const char* const* pairs, int count)
{
    std::string joined;
    for (int i = 0; pairs && i < count; ++i) {
        const auto [name, value] = SplitPair(pairs[i] ? pairs[i] : "");
        joined += (joined.empty() ? "" : "&") + HttpStrEncode(name) + "=" + HttpStrEncode(value);
    }
    return joined;
}

} // namespace vk

int Curl_HttpPostUrlEncodedFields(const char* url, char* fields, VDK_BUFFER* result, VDK_BUFFER* headers,
                                  const char* caPath, const char* extraHeader, const char* proxy, const char* proxyUser,
                                  const char* proxyPassword)
{
    return Post({url, caPath, result, headers, extraHeader, {proxy, proxyUser, proxyPassword}},
                [fields](vk::CurlHandle& curl) {
                    curl.Set(CURLOPT_POSTFIELDS, fields ? fields : "");
                    curl.Set(CURLOPT_POSTFIELDSIZE, fields ? static_cast<long>(strlen(fields)) : 0L);
                    return CURLE_OK;
                });
}

int Curl_HttpPostMultiPart(const char* url, char** fields, int count, char* file, char* header, VDK_BUFFER* result,
                           const char* caPath, const char* proxy, const char* proxyUser, const char* proxyPassword,
                           VDK_BUFFER* headers)
{
    std::unique_ptr<curl_mime, decltype(&curl_mime_free)> form(nullptr, &curl_mime_free);
    return Post({url, caPath, result, headers, header, {proxy, proxyUser, proxyPassword}}, [&](vk::CurlHandle& curl) {
        form.reset(curl_mime_init(curl.get()));
        for (int i = 0; fields && i < count; ++i) {
            const auto [name, value] = SplitPair(fields[i] ? fields[i] : "");
            curl_mimepart* const part = curl_mime_addpart(form.get());
            curl_mime_name(part, name.c_str());
            curl_mime_data(part, value.c_str(), value.size());
        }
        if (file && *file) {
            curl_mimepart* const part = curl_mime_addpart(form.get());
            curl_mime_name(part, "file");
            if (const CURLcode code = curl_mime_filedata(part, file); code != CURLE_OK)
                return code; // libcurl itself would only find that a body of no known size does not go over HTTP 1.0
        }
        curl.Set(CURLOPT_MIMEPOST, form.get());
        return CURLE_OK;
    });
}

int Curl_HttpPostUrl(const char* url, char** pairs, int count, VDK_BUFFER* result, const char* caPath,
                     VDK_BUFFER* headers, const char* extraHeader, const char* proxy, const char* proxyUser,
                     const char* proxyPassword)
{
    std::string fields = vk::EncodeHttpPairs(pairs, count);
    return Curl_HttpPostUrlEncodedFields(url, fields.data(), result, headers, caPath, extraHeader, proxy, proxyUser,
                                         proxyPassword);
}

int VKMsgCurlHttpSendMessage(char* error, unsigned int size, http_service* service, const char* caPath,
                             const char* extraHeader)
{
    VDK_BUFFER page{}, header{};
    const int code = service->upload_file && *service->upload_file
                         ? Curl_HttpPostMultiPart(service->url, service->params, service->param_count,
                                                  service->upload_file, const_cast<char*>(extraHeader), &page, caPath,
                                                  service->proxy, service->proxy_user, service->proxy_password, &header)
                         : Curl_HttpPostUrl(service->url, service->params, service->param_count, &page, caPath, &header,
                                            extraHeader, service->proxy, service->proxy_user, service->proxy_password);
    vk::SetHttpText(service->result, page.data);
    vk::SetHttpText(service->result_header, header.data);
    EmptyVdkBuffer(&page);
    EmptyVdkBuffer(&header);
    if (error && size > 0)
        vk::CopyBounded(error, code == CURLE_OK ? "" : Curl_GetErrStr(code), size);
    return code;
}

const char* Curl_GetErrStr(int code) { return curl_easy_strerror(static_cast<CURLcode>(code)); }

void AddHttpParam(VDK_BUFFER* buffer, char* name, char* value)
{
    const std::string text = (buffer->used > 0 ? "&" : "") + HttpStrEncode(std::string(name ? name : "")) + "=" +
                             HttpStrEncode(std::string(value ? value : ""));
    AppendDataToVdkBuffer(buffer, text.c_str());
}

std::string HttpStrEncode(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        const bool stays = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '/' ||
                           c == '_' || c == '.';
        if (stays)
            out += c;
        else
            out += printfToString("%c%02x", '%', static_cast<unsigned int>(static_cast<unsigned char>(c)));
    }
    return out;
}

int HttpStrEncode(char* out, int size, char* in)
{
    if (!out || !in || size < 1)
        return -1;
    int length = 0;
    for (; *in; ++in) {
        const std::string one = HttpStrEncode(std::string(1, *in));
        if (length + static_cast<int>(one.size()) >= size)
            break;
        memcpy(out + length, one.data(), one.size());
        length += static_cast<int>(one.size());
    }
    out[length] = '\0';
    return length;
}

std::size_t Curl_GetCallBackResult(char* data, std::size_t size, std::size_t count, void* buffer)
{
    const std::size_t bytes = size * count;
    auto* const target = static_cast<VDK_BUFFER*>(buffer);
    if (target && (bytes > INT_MAX || AppendDataToVdkBufferWithSize(target, data, static_cast<int>(bytes)) != 0))
        return 0; // the request ends with libcurl's write error
    return bytes;
}

std::size_t Curl_GetCallBackResultFile(char* data, std::size_t size, std::size_t count, void* stream)
{
    return fwrite(data, size, count, static_cast<FILE*>(stream)) * size;
}
