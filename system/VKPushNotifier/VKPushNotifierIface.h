#pragma once

#include <string>

class VKLogInterface;

/// A push service that wakes devices. Made and used on one thread.
class VKPushNotifierIface
{
public:
    VKPushNotifierIface() = default;
    virtual ~VKPushNotifierIface() = default;
    VKPushNotifierIface(const VKPushNotifierIface&) = delete;
    VKPushNotifierIface& operator=(const VKPushNotifierIface&) = delete;

    /// Reads the settings afresh. False when the service is switched off or cannot be used, of which the log says why;
    /// it is disabled then.
    virtual bool Initialize() = 0;
    virtual bool Finalize() = 0;
    virtual std::string GetNotifierTypeName() = 0;

    void SetLogger(VKLogInterface* logger) { m_pLogger = logger; } ///< must outlive the service; may be null
    bool IsEnabled() const { return m_bEnabled; }

    /// What came of the last notification, in words for an administrator.
    const std::string& GetLastAnswer() const { return m_strLastAnswer; }
    /// Whether the service said for certain that the device's token is dead: nothing will ever reach it again.
    bool IsTokenDead() const { return m_bTokenDead; }

protected:
    VKLogInterface* m_pLogger = nullptr;
    bool m_bEnabled = false;
    std::string m_strLastAnswer;
    bool m_bTokenDead = false;
};
