#pragma once

#include "VKioSocket.h"

/// A socket that connects.
class VKioClientSocket : public VKioSocket
{
public:
    /// Connects, in at most 10 seconds for each step, over IPv4. An open socket is closed first. Throws VKioException:
    /// "Socket Unknown Type", "Socket Create Failed", "Socket Unknown Remote Host", "Socket Connecting Failed"; the
    /// socket is closed then.
    void Connect(const std::string& host, int port, SocketType type = Stream);

private:
    void MakeSocket(SocketType type);
    void ConnectTo(const std::string& host, int port);
};
