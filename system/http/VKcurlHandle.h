#pragma once

#include <curl/curl.h>
#include <memory>
#include <string>

namespace vk {

/// One libcurl easy handle, with the library set up before the first of them. One thread at a time.
class CurlHandle
{
public:
    explicit CurlHandle(bool open = true);
    ~CurlHandle();
    CurlHandle(const CurlHandle&) = delete;
    CurlHandle& operator=(const CurlHandle&) = delete;

    explicit operator bool() const { return m_handle != nullptr; } ///< false when memory was out
    CURL* get() const { return m_handle; }

    /// Sets one option; the type is what the option takes (long, const char*, a pointer, a function).
    template <class Value> void Set(CURLoption option, Value value) { curl_easy_setopt(m_handle, option, value); }
    /// Sets a text option, or clears it when the text is null or empty.
    void SetText(CURLoption option, const char* text) { Set(option, text && *text ? text : nullptr); }

    /// Makes the request, without signals of any kind.
    CURLcode Perform();
    /// Of the last answer; 0 when there was none.
    long ResponseCode() const;
    /// Closes its connections; options and cookies are gone too.
    void Close();
    void Open();

private:
    CURL* m_handle = nullptr;
};

/// A list of header lines.
class CurlHeaders
{
public:
    /// False when memory is out. Control characters end the line: they would begin another header.
    bool Add(std::string line);
    void AddAll(const CurlHeaders& others);
    void Clear() { m_list.reset(); }
    curl_slist* get() const { return m_list.get(); } ///< null when there is none

private:
    struct Free
    {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };
    std::unique_ptr<curl_slist, Free> m_list;
};

} // namespace vk
