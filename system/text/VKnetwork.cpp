#include "VKnetwork.h"

#include "VKstringCase.h"
#include "VKstringTrim.h"

#include <algorithm>
#include <arpa/inet.h>
#include <fstream>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>

namespace {

using Interfaces = std::unique_ptr<ifaddrs, void (*)(ifaddrs*)>;

Interfaces AllInterfaces()
{
    ifaddrs* first = nullptr;
    return Interfaces(getifaddrs(&first) == 0 ? first : nullptr, freeifaddrs);
}

/// The address of one family as text; empty for another family or one that is of no use to others.
std::string AddressText(const ifaddrs& entry, int family)
{
    const bool outside = (entry.ifa_flags & IFF_UP) != 0 && (entry.ifa_flags & IFF_LOOPBACK) == 0;
    if (!outside || !entry.ifa_addr || entry.ifa_addr->sa_family != family)
        return std::string();
    char text[INET6_ADDRSTRLEN] = {};
    if (family == AF_INET) {
        inet_ntop(family, &reinterpret_cast<const sockaddr_in*>(entry.ifa_addr)->sin_addr, text, sizeof text);
    } else {
        const in6_addr& address = reinterpret_cast<const sockaddr_in6*>(entry.ifa_addr)->sin6_addr;
        if (!IN6_IS_ADDR_LINKLOCAL(&address))
            inet_ntop(family, &address, text, sizeof text);
    }
    return text;
}

void AppendAddresses(std::vector<std::string>& addresses, int family)
{
    const Interfaces interfaces = AllInterfaces();
    for (const ifaddrs* entry = interfaces.get(); entry; entry = entry->ifa_next)
        if (std::string text = AddressText(*entry, family); !text.empty())
            addresses.push_back(std::move(text));
}

} // namespace

bool VKutilVerifyIP(const char* address)
{
    unsigned char bytes[sizeof(in6_addr)];
    return address && (inet_pton(AF_INET, address, bytes) == 1 || inet_pton(AF_INET6, address, bytes) == 1);
}

bool VKsysUtility::VerifyIP(const std::string& address)
{
    // A zero byte inside would hide what follows it.
    return address.find('\0') == std::string::npos && VKutilVerifyIP(address.c_str());
}

std::vector<std::string> VKutilGetLocalIps()
{
    std::vector<std::string> addresses;
    AppendAddresses(addresses, AF_INET);
    AppendAddresses(addresses, AF_INET6);
    return addresses;
}

std::string VKutilGetLocalHostIp()
{
    std::vector<std::string> addresses;
    AppendAddresses(addresses, AF_INET);
    return addresses.empty() ? "127.0.0.1" : addresses.front();
}

bool VKutilAmIPHS(const char* markerFile)
{
    std::ifstream file(markerFile ? markerFile : "");
    std::string line;
    std::getline(file, line);
    const std::string_view word = vk::Trimmed(line);
    const auto says = [word](std::string_view no) { return vk::EqualNoCase(word, no); };
    return !word.empty() && !says("0") && !says("no") && !says("false");
}
