#include "VKthread.h"

#include "VKlivingThreads.h"

#include <pthread.h>
#include <unistd.h>

unsigned long GetMyThreadID()
{
    vk::NoteLivingThread();
    return pthread_self();
}

void VKsleep(int ms)
{
    if (ms <= 0)
        return;
    VKsleepSec(ms / 1000);
    usleep(static_cast<useconds_t>(ms % 1000) * 1000);
}

void VKsleepSec(int seconds)
{
    if (seconds > 0)
        sleep(static_cast<unsigned>(seconds));
}
