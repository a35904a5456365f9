#pragma once

#include "VKPlainModule.h"
#include "VKconDelegate.h"
#include "VKconEvent.h"
#include "VKconThread.h"

#include <memory>
#include <vector>

/// A module that runs on a thread of its own. It is started once:
///
///     module.Initialize(logger, "");
///     module.StartAsThread();
///     ...
///     module.StopThread();                 // the next KeepContinueMyself of the body answers false
///     if (module.WaitForThreadStop(-1))    // the body has ended and Finalize has run
///         delete &module;
///
/// `DoThreadWork` and `Finalize` run on the module's thread, everything else on the caller's.
class VKThreadModule : public VKPlainModule, public VKconDelegate
{
public:
    VKThreadModule() = default;
    /// Neither stops the thread nor waits for it: the module must not be deleted before its thread has stopped.
    ~VKThreadModule() override;

    /// The module's own body: loops while `KeepContinueMyself` says so. What it throws is logged and ends it.
    virtual void DoThreadWork() = 0;
    void StopWork() override {}
    void PauseWork() override {}
    void ResumeWork() override {}
    /// The body of the thread: `DoThreadWork`, `Finalize`, then the stopped event.
    void DoWork(void* userData) override;

    /// Makes the events and the thread. Always true; throws VKException when it cannot. A second call replaces events
    /// and thread without a look at the first.
    bool StartAsThread();

    /// Asks the thread to stop; true. Does nothing to a module that was not started.
    bool StopThread();

    /// Waits for the thread to stop, at most `ms` milliseconds as VKconEvent::Wait counts them, -1 without limit. False
    /// when it did not, or was never started.
    bool WaitForThreadStop(int ms);

protected:
    /// The pacing of the body: sleeps `ms` as VKconEvent::Wait counts them, or until the stop is requested, and tells
    /// whether the module is to go on. Less than 1 is true at once, stop or not. Without `checkStop` it is a plain
    /// interruptible sleep, whose result is always false and means nothing.
    bool KeepContinueMyself(int ms, bool checkStop);

    /// Whether the stop was requested; never waits. For any thread once the module is started.
    bool IsStopRequested();

    VKconEvent* m_pStopEvent = nullptr;    ///< the stop is requested
    VKconThread* m_pThread = nullptr;      ///< null, like the events, until StartAsThread
    VKconEvent* m_pStoppedEvent = nullptr; ///< the thread has done its work

private:
    template <class T, class... Arguments> T* Hold(const char* failure, Arguments... arguments);

    std::vector<std::unique_ptr<VKobject>> m_held; ///< owns the three above, those of an earlier start too
};
