#include "VKnoSigPipe.h"

#include <cerrno>
#include <ctime>

namespace vk {

namespace {

sigset_t OnlySigPipe()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    return set;
}

bool IsPending()
{
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

} // namespace

NoSigPipe::NoSigPipe() : m_wasPending(IsPending())
{
    const sigset_t pipe = OnlySigPipe();
    pthread_sigmask(SIG_BLOCK, &pipe, &m_before);
}

NoSigPipe::~NoSigPipe()
{
    const int error = errno;
    if (!m_wasPending && IsPending()) {
        const sigset_t pipe = OnlySigPipe();
        const timespec now{0, 0};
        while (sigtimedwait(&pipe, nullptr, &now) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    errno = error;
}

} // namespace vk
