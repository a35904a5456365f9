#pragma once

#include <string>

class VKLogInterface;

/// A long-lived component: it is initialised once with a logger and finalised once. Not safe for threads by itself.
class VKPlainModule
{
public:
    VKPlainModule() = default;
    virtual ~VKPlainModule() = default;
    VKPlainModule(const VKPlainModule&) = delete;
    VKPlainModule& operator=(const VKPlainModule&) = delete;

    /// The module's own setting up and taking down. A false from `InitializeSpecial` is its way to refuse to start.
    virtual bool InitializeSpecial() { return true; }
    virtual bool FinalizeSpecial() { return true; }
    virtual std::string GetRunningModuleName() = 0;
    /// Whether a module that is given no logger makes its own.
    virtual bool IsLoggerRequired() { return true; }

    /// Takes the logger, which must outlive the module, or, when it is null, makes one named after the module from the
    /// log configuration in `configDir`; without a directory, or when that fails, the module goes on with none.
    /// The result of `InitializeSpecial`.
    bool Initialize(VKLogInterface* logger, const std::string& configDir);

    /// Calls `FinalizeSpecial`, whatever it returns, and stops a logger that the module made. Always true.
    bool Finalize();

protected:
    /// May be null.
    VKLogInterface* GetLogger() const { return m_pLogger; }

    VKLogInterface* m_pLogger = nullptr;
    bool m_bOwnsLogger = false; ///< the module made the logger, whose object belongs to the logger registry

private:
    void MakeLogger(const std::string& configDir);
};
