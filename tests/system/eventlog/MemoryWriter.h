#pragma once

#include "VKsysEventLogWriterInterface.h"

#include <functional>
#include <mutex>
#include <string>
#include <vector>

/// A writer that keeps its records, for loggers under test. `before` runs ahead of each record.
class MemoryWriter final : public VKsysEventLogWriterInterface
{
public:
    struct Store
    {
        std::mutex mutex;
        std::vector<std::string> records; // "LEVEL message", guarded by mutex
        std::function<void()> before = [] {};

        std::vector<std::string> Take()
        {
            const std::lock_guard<std::mutex> guard(mutex);
            return std::move(records);
        }
    };

    explicit MemoryWriter(Store& store) : m_store(store) {}

    bool setParameter(std::string&, std::string&) override { return true; }
    bool isInitialized() override { return true; }
    bool operator()(std::string, LogLevel level, std::string message, int, const char*, long) override
    {
        m_store.before();
        const std::lock_guard<std::mutex> guard(m_store.mutex);
        m_store.records.push_back(getLogLevelString(level) + " " + message);
        return true;
    }

private:
    Store& m_store;
};
