#pragma once

class VKDBsystem;

/// The root of all entity objects: what the factory's cache holds.
class VKDBbaseInterface
{
public:
    virtual ~VKDBbaseInterface() = default;

    /// Makes the object usable on this system, which must outlive it. An implementation opens its store here and throws
    /// VKDBexception when it cannot.
    virtual bool Initialize(VKDBsystem* system);
    virtual bool IsInitialized() { return m_bInitialized; }
    virtual VKDBsystem* GetDbSystem() { return m_pDbSystem; }

    /// Entities with filters or sorting forget them here.
    virtual void ClearFilter() {}
    virtual void ClearSort() {}

    /// Whether a connection to the server was lost since the object was made: its own may be dead as well, so the
    /// factory makes a new one in its place.
    bool IsConnectionStale() const;

private:
    VKDBsystem* m_pDbSystem = nullptr;
    bool m_bInitialized = false;
    unsigned long m_uLostConnections = 0; ///< at the time of Initialize
};
