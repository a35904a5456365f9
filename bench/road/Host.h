#pragma once

#include "FakeMessageFile.h"
#include "TempDir.h"
#include "VKMXPRequestHandlerIface.h"
#include "VKMsgFileQueue.h"
#include "VKMxpDriver.h"

#include <string>

class VKMXPCoreManager;

/// A message for one of the devices, as a host would make it.
class BenchMessage
{
public:
    /// \param carrier number of the connection, \param device number of the device
    BenchMessage(int carrier, int device, int port);

    FakeMessageFile file;
};

/// The system under measurement, in a root of its own: the real driver with its embedded database, a log file at WARN
/// through the multi-threaded logger, and the core manager behind it. One in a process.
class Host
{
public:
    /// \param port of the XMPP server on loopback
    /// \param receivers rows to make in the receivers and in the sessions, for ids 1 to that number
    Host(int port, int receivers);
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// A message of about 1 KiB on the wire with a job id of its own.
    BenchMessage Message(int carrier, int device) const { return {carrier, device, m_port}; }

    /// Hands it to the driver. Throws std::runtime_error with the failure reason when it is not sent.
    void Send(BenchMessage& message);

    /// Starts the connection of that number without a message; under any other name than the driver's own.
    void Connect(const std::string& connection, const std::string& user);
    void Disconnect(const std::string& connection);
    /// What the driver has opened for its messages of that number.
    static std::string Connection(int carrier) { return "carrier" + std::to_string(carrier); }

    VKMxpDriver& Driver() { return *m_driver; }
    VKMXPCoreManager& Manager() { return *m_manager; }
    /// The installation, for another process that works in it.
    std::string Root() const { return m_root.Path().string(); }
    /// All that is logged at WARN and above.
    std::string Log() const;

private:
    void MakeRoot();
    void MakeReceivers(int count);

    TempDir m_root;
    int m_port;
    VKMsgFileQueue m_returned;
    VKMxpDriver* m_driver = nullptr;       // the process's one
    VKMXPCoreManager* m_manager = nullptr; // the process's one
};
