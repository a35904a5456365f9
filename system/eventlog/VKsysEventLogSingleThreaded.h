#pragma once

#include "VKsysEventLogInterface.h"

/// A logger that writes on the caller's thread, and so costs it the work on the file. Takes no lock of its own.
class VKsysEventLogSingleThreaded : public VKsysEventLogInterface
{
public:
    using VKsysEventLogInterface::Print;
    bool Print(LogLevel level, std::string message, int line, const char* file) override;
};
