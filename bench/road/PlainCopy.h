#pragma once

#include "Statistics.h"

#include <string>

/// Sends a file through a TCP connection on loopback in blocks of that many bytes, from one thread to another that
/// throws them away. The time from the first byte received to the last. Throws std::system_error.
Clock::duration PlainCopy(const std::string& path, std::size_t block);

/// A TCP port that nobody listens on at the moment.
int FreePort();
