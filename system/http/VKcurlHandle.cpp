#include "VKcurlHandle.h"

#include "VKnoSigPipe.h"

#include <algorithm>
#include <mutex>

namespace vk {

CurlHandle::CurlHandle(bool open)
{
    if (open)
        Open();
}

CurlHandle::~CurlHandle() { Close(); }

void CurlHandle::Open()
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    if (!m_handle)
        m_handle = curl_easy_init();
}

void CurlHandle::Close()
{
    if (!m_handle)
        return;
    const NoSigPipe noSignal; // a TLS connection says goodbye
    curl_easy_cleanup(m_handle);
    m_handle = nullptr;
}

CURLcode CurlHandle::Perform()
{
    if (!m_handle)
        return CURLE_FAILED_INIT;
    // libcurl's own way to be safe from SIGPIPE changes the whole process's disposition, under the feet of other
    // threads.
    Set(CURLOPT_NOSIGNAL, 1L);
    const NoSigPipe noSignal;
    return curl_easy_perform(m_handle);
}

long CurlHandle::ResponseCode() const
{
    long code = 0;
    if (m_handle)
        curl_easy_getinfo(m_handle, CURLINFO_RESPONSE_CODE, &code);
    return code;
}

bool CurlHeaders::Add(std::string line)
{
    line.erase(std::find_if(line.begin(), line.end(), [](unsigned char c) { return c < ' ' && c != '\t'; }),
               line.end());
    curl_slist* const longer = curl_slist_append(m_list.get(), line.c_str());
    if (!longer)
        return false;
    static_cast<void>(m_list.release()); // the longer list owns it
    m_list.reset(longer);
    return true;
}

void CurlHeaders::AddAll(const CurlHeaders& others)
{
    for (const curl_slist* line = others.get(); line; line = line->next)
        Add(line->data);
}

} // namespace vk
