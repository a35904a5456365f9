#pragma once

/// One request for VKcurlService::SendMessage and VKMsgCurlHttpSendMessage. All texts are malloc()ed and belong to the
/// record, null where there is none; begin with a zero-filled record and end with VKhttpClean.
struct http_service
{
    char* url;
    int method;    ///< a VKcurlService::HttpMethType
    char** params; ///< malloc()ed array of malloc()ed texts "name=value", not encoded
    int param_count;
    char* proxy; ///< "host:port"
    char* proxy_user;
    char* proxy_password;
    char* cookie;
    char* referer;
    char* headers;       ///< one on each line
    char* upload_file;   ///< path of the file that a PUT sends in place of the parameters, or that a form carries
    char* result;        ///< the page
    char* result_header; ///< the header lines of the answer
};

/// Frees each member and clears the record.
void VKhttpClean(http_service* service);

namespace vk {

/// Replaces one text of a record by a copy; null for none.
void SetHttpText(char*& member, const char* text);

} // namespace vk
