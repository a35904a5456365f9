#pragma once

#include "VKbuffer.h"
#include "VKhttpService.h"

#include <cstddef>
#include <cstdio>
#include <string>

/// \file
/// Stand-alone HTTP requests: one POST each, on a handle of its own, over HTTP 1.0. The peer's certificate is checked
/// against `caPath` (PEM; null or empty stands for "../config/ca-bundle.crt"). Each returns libcurl's code, 0 for an
/// answer of whatever status, and ends after 300 seconds. Answers are appended to the buffers, which may be null, as
/// text. Nothing is shared: any thread may call.

/// Posts fields that are encoded already; null for an empty body. A proxy is "host:port".
int Curl_HttpPostUrlEncodedFields(const char* url, char* fields, VDK_BUFFER* result, VDK_BUFFER* headers,
                                  const char* caPath, const char* extraHeader = nullptr, const char* proxy = nullptr,
                                  const char* proxyUser = nullptr, const char* proxyPassword = nullptr);

/// Posts a form (multipart/form-data) of texts "name=value" and of a file, which is called "file" and may be null.
int Curl_HttpPostMultiPart(const char* url, char** fields, int count, char* file, char* header, VDK_BUFFER* result,
                           const char* caPath, const char* proxy = nullptr, const char* proxyUser = nullptr,
                           const char* proxyPassword = nullptr, VDK_BUFFER* headers = nullptr);

/// Posts texts "name=value", which it encodes.
int Curl_HttpPostUrl(const char* url, char** pairs, int count, VDK_BUFFER* result, const char* caPath,
                     VDK_BUFFER* headers, const char* extraHeader = nullptr, const char* proxy = nullptr,
                     const char* proxyUser = nullptr, const char* proxyPassword = nullptr);

/// Posts what the record tells, as a form when it has a file to upload, and puts the answer into the record. `error`
/// of `size` bytes gets the text of what failed, empty for nothing.
int VKMsgCurlHttpSendMessage(char* error, unsigned int size, http_service* service, const char* caPath,
                             const char* extraHeader);

/// The text of a libcurl code.
const char* Curl_GetErrStr(int code);

/// Adds "&", when the buffer is not empty, and the encoded "name=value".
void AddHttpParam(VDK_BUFFER* buffer, char* name, char* value);

/// Letters, digits, "/", "_" and "." stay, any other byte is "%" and two digits in lower case. The form with a buffer
/// writes what fits whole into `size` bytes and returns the length, -1 for null.
int HttpStrEncode(char* out, int size, char* in);
std::string HttpStrEncode(const std::string& text);

/// Write functions for libcurl: append to the VDK_BUFFER, which may be null, and write to the stream.
std::size_t Curl_GetCallBackResult(char* data, std::size_t size, std::size_t count, void* buffer);
std::size_t Curl_GetCallBackResultFile(char* data, std::size_t size, std::size_t count, void* stream);

namespace vk {

inline constexpr const char* kDefaultCaBundle = "../config/ca-bundle.crt";
inline constexpr long kHttpTimeoutSeconds = 300;

/// Texts "name=value" encoded and joined with "&"; the split is at the first "=".
std::string EncodeHttpPairs(const char* const* pairs, int count);

} // namespace vk
