#pragma once

/// The thing that a VKconThread runs.
class VKconDelegate
{
public:
    virtual ~VKconDelegate() = default;

    /// The thread's body. An exception that leaves it ends the process.
    virtual void DoWork(void* userData) = 0;
    virtual void StopWork() {}
    virtual void PauseWork() {}
    virtual void ResumeWork() {}

    /// Handed to `DoWork`; belongs to the caller.
    void SetUserData(void* data) { m_pUserData = data; }
    void* GetUserData() { return m_pUserData; }

private:
    void* m_pUserData = nullptr;
};
