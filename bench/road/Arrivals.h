#pragma once

#include "Statistics.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// What the devices got, in the order of arrival.
class Arrivals
{
public:
    void Put(int device, const std::string& body)
    {
        const auto now = Clock::now();
        const std::lock_guard<std::mutex> lock(m_lock);
        m_envelopes.emplace_back(device, body);
        for (std::size_t at = body.find(kMark); at != std::string::npos; at = body.find(kMark, at + 1))
            ++m_messages;
        m_last = now;
        m_changed.notify_one();
    }

    void Clear()
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        m_envelopes.clear();
        m_messages = 0;
    }

    /// Waits for that many messages, a minute at most, and gives the time of the last.
    Clock::time_point Await(int messages)
    {
        std::unique_lock<std::mutex> lock(m_lock);
        if (!m_changed.wait_for(lock, std::chrono::seconds(60), [&] { return m_messages >= messages; }))
            throw std::runtime_error("only " + std::to_string(m_messages) + " of " + std::to_string(messages) +
                                     " messages arrived");
        return m_last;
    }

    std::vector<std::pair<int, std::string>> Envelopes()
    {
        const std::lock_guard<std::mutex> lock(m_lock);
        return m_envelopes;
    }

private:
    static constexpr const char* kMark = "<job-id>";

    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<std::pair<int, std::string>> m_envelopes; // m_lock, as all below
    int m_messages = 0;
    Clock::time_point m_last;
};
