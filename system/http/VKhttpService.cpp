#include "VKhttpService.h"

#include <cstdlib>
#include <cstring>
#include <initializer_list>

void VKhttpClean(http_service* service)
{
    if (!service)
        return;
    for (int i = 0; service->params && i < service->param_count; ++i)
        free(service->params[i]);
    free(service->params);
    for (char* text :
         {service->url, service->proxy, service->proxy_user, service->proxy_password, service->cookie, service->referer,
          service->headers, service->upload_file, service->result, service->result_header})
        free(text);
    *service = http_service{};
}

namespace vk {

void SetHttpText(char*& member, const char* text)
{
    free(member);
    member = text ? strdup(text) : nullptr;
}

} // namespace vk
