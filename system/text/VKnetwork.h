#pragma once

#include <string>
#include <vector>

/// Whether the text is an IP address: four decimal numbers with dots, or the colon form of IPv6. Null is none.
bool VKutilVerifyIP(const char* address);

/// The addresses of this machine's running interfaces, IPv4 first; loopback and link-local IPv6 are left out.
[[nodiscard]] std::vector<std::string> VKutilGetLocalIps();
/// The first IPv4 address of this machine, "127.0.0.1" when it has none but loopback.
[[nodiscard]] std::string VKutilGetLocalHostIp();

/// Reads the marker file of a standby server: true when its first line says something else than "0", "no" or "false".
/// False without such a file.
bool VKutilAmIPHS(const char* markerFile);

/// The class-wide twin of the address check.
class VKsysUtility
{
public:
    static bool VerifyIP(const std::string& address);
};
