#pragma once

#include "HostMessageFile.h"
#include "VKProtocolDriverInterface.h"

#include <chrono>

namespace vk {

/// Hands files to a driver and takes them back: the host's side of the border, whatever its messages come from. Works
/// on the thread that calls it; the driver may push files back from other threads meanwhile.
class DriverExchange
{
public:
    /// Both must outlive the object; the driver has been given the queue.
    DriverExchange(VKProtocolDriverInterface& driver, VKMsgFileQueue& queue);
    ~DriverExchange() { End(); }
    DriverExchange(const DriverExchange&) = delete;
    DriverExchange& operator=(const DriverExchange&) = delete;

    /// Hands one over; it must live until the driver has given it back.
    /// \return What the driver answered at once; keepOpen says whether reports may follow.
    MessageReport Send(HostMessageFile& file);

    /// Has the driver push back what its receiver has said since the last time.
    void Ask(HostMessageFile& file);

    /// The next file that was pushed back; null when there is none. It may have been given up by the host already, so
    /// look for it among the open ones before anything else.
    VKMessageFile* NextReturned();

    /// The driver's periodic event, when a second has passed since the last one.
    void KeepGoing();

    /// Cleans the driver up, once: it lets go of all files, which may be deleted then. What it pushes back at the end
    /// is still to be had.
    void End();

    VKProtocolDriverInterface& Driver() { return m_driver; }

private:
    VKProtocolDriverInterface& m_driver;
    VKMsgFileQueue& m_queue;
    std::chrono::steady_clock::time_point m_nextPeriodic;
    bool m_ended = false;
};

} // namespace vk
