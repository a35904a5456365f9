#pragma once

#include "Measurement.h"

#include <string>

/// CPU of a process of its own over some seconds in which nothing happens: with one connection and 1,000 sessions, and
/// with none at all; beside it a bare client with 1,000 message sessions.
Figure IdleCpu(Stage& stage);
Figure IdleCpuNoConnection(Stage& stage);
/// One work round over 10,000 idle sessions.
Figure RoundOverTenThousand(Stage& stage);
/// Heap that one idle session holds beyond a bare message session.
Figure SessionBytes(Stage& stage);

/// The body of such an idle process: prints its share of a core in percent. \param kind "sessions", "none" or "bare"
int RunIdleProcess(const std::string& kind, int port);
