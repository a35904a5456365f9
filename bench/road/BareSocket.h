#pragma once

#include <gloox/connectiontcpclient.h>

/// gloox's own TCP connection with its delays taken out: Nagle is off from before the first byte, and recv waits in
/// poll() and takes what is there.
class BareSocket : public gloox::ConnectionTCPClient
{
public:
    using gloox::ConnectionTCPClient::ConnectionTCPClient;

    gloox::ConnectionError connect() override;
    gloox::ConnectionError recv(int timeout = -1) override;
    gloox::ConnectionBase* newInstance() const override;
};
