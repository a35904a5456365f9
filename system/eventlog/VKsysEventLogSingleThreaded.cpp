#include "VKsysEventLogSingleThreaded.h"

#include <utility>

bool VKsysEventLogSingleThreaded::Print(LogLevel level, std::string message, int line, const char* file)
{
    return WriteRecord(level, std::move(message), line, file, 0);
}
