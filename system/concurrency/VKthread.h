#pragma once

/// The calling thread's identifier (`pthread_self`). A thread that has asked for it is known to
/// `VKconThread::IsThreadAlive` until it ends.
unsigned long GetMyThreadID();

/// Sleeps that many milliseconds.
void VKsleep(int ms);

/// Sleeps that many seconds.
void VKsleepSec(int seconds);
