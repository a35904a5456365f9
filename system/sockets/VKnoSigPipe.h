#pragma once

#include <csignal>

namespace vk {

/// While it lives, a write to a connection that the other side has closed gives this thread an error instead of ending
/// the process: libraries write to sockets without MSG_NOSIGNAL. A signal that such a write raised is taken away before
/// the thread's mask is put back; one that was pending before stays. Use it on one thread; it may be nested.
class NoSigPipe
{
public:
    NoSigPipe();
    ~NoSigPipe();
    NoSigPipe(const NoSigPipe&) = delete;
    NoSigPipe& operator=(const NoSigPipe&) = delete;

private:
    sigset_t m_before;
    bool m_wasPending;
};

} // namespace vk
