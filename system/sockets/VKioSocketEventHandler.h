#pragma once

class VKioSocket;

/// Hears of what becomes of a socket, on the thread that uses the socket. Must outlive it.
class VKioSocketEventHandler
{
public:
    virtual ~VKioSocketEventHandler() = default;
    virtual void OnConnected(VKioSocket&) {}
    /// The descriptor is still open, the remote address known.
    virtual void OnClosing(VKioSocket&) {}
};
