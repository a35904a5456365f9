#pragma once

#include <string>

/// Who is who on the private server. Every password is the user's name.
namespace accounts {

inline constexpr const char* kDomain = "localhost";
inline constexpr int kHosts = 10;
inline constexpr int kDevices = 50;

/// The account of the driver's connection of that number, and that of the bare client beside it.
inline std::string Host(int number) { return "host" + std::to_string(number); }
inline std::string Bare(int number) { return "bare" + std::to_string(number); }
/// Devices; a number of kDevices and more names one that never logs in.
inline std::string Device(int number) { return "device" + std::to_string(number); }

inline std::string Jid(const std::string& user) { return user + "@" + kDomain; }

} // namespace accounts
