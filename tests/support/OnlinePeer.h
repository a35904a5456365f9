#pragma once

#include "ProsodyServer.h"
#include "XmppPeer.h"

#include <gtest/gtest.h>

/// A device of one of a server's accounts, whose password is "pw": logged in when it is made.
class OnlinePeer : public XmppPeer
{
public:
    OnlinePeer(const ProsodyServer& server, const std::string& user, OnBody onBody = nullptr)
        : XmppPeer(server.Jid(user) + "/mxp", "pw", server.Port(), std::move(onBody))
    {
        EXPECT_TRUE(WaitUntilOnline()) << user;
    }
};
