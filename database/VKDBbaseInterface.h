#pragma once

class VKDBsystem;

/// The root of all entity objects: what the factory's cache holds.
class VKDBbaseInterface
{
public:
    virtual ~VKDBbaseInterface() = default;

    /// Makes the object usable on this system, which must outlive it. An implementation opens its store here and throws
    /// VKDBexception when it cannot.
    virtual bool Initialize(VKDBsystem* system)
    {
        m_pDbSystem = system;
        m_bInitialized = true;
        return true;
    }
    virtual bool IsInitialized() { return m_bInitialized; }
    virtual VKDBsystem* GetDbSystem() { return m_pDbSystem; }

    /// Entities with filters or sorting forget them here.
    virtual void ClearFilter() {}
    virtual void ClearSort() {}

private:
    VKDBsystem* m_pDbSystem = nullptr;
    bool m_bInitialized = false;
};
