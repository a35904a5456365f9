#pragma once

#include "VKsystemLog.h"

#include <mutex>
#include <string>
#include <vector>

/// While it lives, takes the lines that would go to syslog. One at a time.
class SystemLogProbe
{
public:
    SystemLogProbe()
    {
        Lines(nullptr, true);
        VKsystemLog::SetSink([](int priority, const char* line) {
            const std::string text = std::to_string(priority) + " " + line;
            Lines(&text, false);
        });
    }
    ~SystemLogProbe() { VKsystemLog::SetSink(nullptr); }
    SystemLogProbe(const SystemLogProbe&) = delete;
    SystemLogProbe& operator=(const SystemLogProbe&) = delete;

    /// All lines so far, each "PRIORITY LINE"; they are forgotten.
    std::string Take()
    {
        std::string all;
        for (const std::string& line : Lines(nullptr, true))
            all += line + "\n";
        return all;
    }
    bool Has(const std::string& text) { return Take().find(text) != std::string::npos; }

private:
    static std::vector<std::string> Lines(const std::string* add, bool clear)
    {
        static std::mutex mutex;
        static std::vector<std::string> lines;
        const std::lock_guard<std::mutex> guard(mutex);
        if (add)
            lines.push_back(*add);
        std::vector<std::string> present = lines;
        if (clear)
            lines.clear();
        return present;
    }
};
