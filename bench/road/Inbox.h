#pragma once

#include "Statistics.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <string>

/// Where a receiving thread notes what came, and another one waits for it.
class Inbox
{
public:
    /// Notes the time first of all.
    void Put(const std::string& from, const std::string& body)
    {
        const auto now = Clock::now();
        const std::lock_guard<std::mutex> lock(m_lock);
        m_time = now;
        m_from = from;
        m_body = body;
        ++m_count;
        m_changed.notify_one();
    }

    /// How many came until now.
    unsigned long Count()
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        return m_count;
    }

    /// Waits until that many have come since the begin, and gives the time of the last. Throws std::runtime_error after
    /// ten seconds.
    Clock::time_point Await(unsigned long count)
    {
        std::unique_lock<std::mutex> lock(m_lock);
        if (!m_changed.wait_for(lock, std::chrono::seconds(10), [&] { return m_count >= count; }))
            throw std::runtime_error("message " + std::to_string(count) + " did not arrive within ten seconds");
        return m_time;
    }

    std::string LastBody()
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        return m_body;
    }
    std::string LastSender()
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        return m_from;
    }

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    unsigned long m_count = 0; // all m_lock
    Clock::time_point m_time;
    std::string m_from;
    std::string m_body;
};
