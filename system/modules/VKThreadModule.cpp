#include "VKThreadModule.h"

#include "VKLog.h"
#include "VKconException.h"
#include "VKioException.h"
#include "VKthread.h"

#include <cxxabi.h>
#include <new>

namespace {

/// Runs a part of the thread's work; what it throws is logged and ends there.
template <class Work> void RunGuarded(VKLogInterface* logger, Work work)
{
    try {
        work();
    } catch (const VKconException& failure) {
        VK_LOG_CRITICAL(logger, "Concurrency exception occurred: %s", failure.ToString().c_str());
    } catch (const VKioException& failure) {
        VK_LOG_CRITICAL(logger, "I/O exception occurred: %s", failure.ToString().c_str());
    } catch (const std::exception& failure) {
        // Meant: a plain VKException shows the standard class's own text.
        VK_LOG_CRITICAL(logger, "General exception occurred: %s", failure.what());
    } catch (abi::__forced_unwind&) {
        throw; // the thread is being ended
    } catch (...) {
        VK_LOG_CRITICAL(logger, "Unknown exception occurred.");
    }
}

} // namespace

VKThreadModule::~VKThreadModule()
{
    m_held.clear(); // a running thread does not mind that its object goes
    m_pStopEvent = nullptr;
    m_pStoppedEvent = nullptr;
}

/// Makes an object that lives as long as the module.
template <class T, class... Arguments> T* VKThreadModule::Hold(const char* failure, Arguments... arguments)
{
    auto object = std::unique_ptr<T>(new (std::nothrow) T(arguments...));
    if (!object)
        throw VKException("../src/VKThreadModule.cpp", __LINE__,
                          printfToString(failure, GetRunningModuleName().c_str()));
    T* result = object.get();
    m_held.push_back(std::move(object));
    return result;
}

bool VKThreadModule::StartAsThread()
{
    VK_LOG_SCOPE(scope, m_pLogger, "VKThreadModule::StartAsThread()");
    constexpr const char* kNoEvent = "Unable to create event object. Failure while instantiating event object for '%s' "
                                     "call-processor.";
    constexpr const char* kNoThread = "Unable to create thread object. Failure while instantiating thread object for "
                                      "'%s' call-processor.";
    m_pStopEvent = Hold<VKconEvent>(kNoEvent, true);
    m_pStoppedEvent = Hold<VKconEvent>(kNoEvent, true);
    m_pThread = Hold<VKconThread>(kNoThread);
    // Meant: the letter behind %u shows as it is.
    VK_LOG_INFO(m_pLogger, "Starting '%s' thread, pid:%ul ...", GetRunningModuleName().c_str(),
                static_cast<unsigned>(GetMyThreadID()));
    m_pThread->Run(this);
    return scope.Result(true);
}

bool VKThreadModule::StopThread()
{
    if (m_pStopEvent)
        m_pStopEvent->Broadcast();
    return true;
}

bool VKThreadModule::WaitForThreadStop(int ms)
{
    return m_pStoppedEvent && m_pStoppedEvent->Wait(ms) == VKconEvent::WAIT_SIGNALLED;
}

bool VKThreadModule::KeepContinueMyself(int ms, bool checkStop)
{
    if (ms < 1)
        return true;
    if (!m_pStopEvent)
        return false; // the body runs without a start, there is nobody who could stop it
    try {
        const int result = m_pStopEvent->Wait(ms);
        if (result == VKconEvent::WAIT_FAILED)
            VK_LOG_ERROR(m_pLogger, "The STOP THREAD event WAIT() returned error. Resuming operation.");
        return checkStop && result != VKconEvent::WAIT_SIGNALLED;
    } catch (const std::exception&) {
        return false;
    }
}

bool VKThreadModule::IsStopRequested() { return m_pStopEvent && m_pStopEvent->IsSignalled(); }

void VKThreadModule::DoWork(void*)
{
    {
        VK_LOG_SCOPE(scope, m_pLogger, "VKThreadModule::DoWork()");
        RunGuarded(m_pLogger, [this] { DoThreadWork(); });
        RunGuarded(m_pLogger, [this] { Finalize(); });
    }
    // Last of all, the leave line included: whoever waits for this may delete module and logger at once.
    if (m_pStoppedEvent)
        m_pStoppedEvent->Broadcast();
}
