#pragma once

#include <atomic>
#include <thread>

class BareClient;

/// The thread that receives for a number of bare clients. It sleeps while nothing comes in.
class PumpThread
{
public:
    PumpThread();
    ~PumpThread();
    PumpThread(const PumpThread&) = delete;
    PumpThread& operator=(const PumpThread&) = delete;

    /// Takes in a client that is connected, which must outlive this thread.
    void Add(BareClient& client);

private:
    void Run();

    int m_epoll;
    int m_stop; // an eventfd
    std::thread m_thread;
};
