#pragma once

#include "VKLogInterface.h"
#include "VKMessageFile.h"

#include <chrono>
#include <map>
#include <string>

namespace vk {

/// The connections on which answers to open messages come in. A driver connects when it sends; a message that an
/// earlier process sent, or whose connection broke since, would hear nothing before the next one is sent. The class
/// library's core manager is the driver's own as well, so what is connected here serves the driver too. One thread.
class AnswerLine
{
public:
    /// Does nothing when the driver is not the class library's own.
    AnswerLine(bool isOwnDriver, VKLogInterface& logger) : m_isOwnDriver(isOwnDriver), m_logger(logger) {}
    ~AnswerLine() { Close(); }
    AnswerLine(const AnswerLine&) = delete;
    AnswerLine& operator=(const AnswerLine&) = delete;

    /// Sees to it that the carrier of a message is connected. Waits for a login; one that fails is not tried again for
    /// half a minute.
    void Open(const VKMessageFile& file);

    /// Ends what it has connected; before the driver ends.
    void Close();

private:
    using Clock = std::chrono::steady_clock;

    bool m_isOwnDriver;
    VKLogInterface& m_logger;
    /// When a carrier may be tried again; a time long gone for one that is connected.
    std::map<std::string, Clock::time_point> m_carriers;
};

} // namespace vk
