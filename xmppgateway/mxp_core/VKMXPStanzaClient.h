#pragma once

#include <gloox/client.h>
#include <gloox/error.h>
#include <gloox/messagesession.h>

#include <functional>
#include <string>
#include <utility>

/// A gloox client that sends a message body as text of its own making. gloox builds a tree for each message and escapes
/// it in quadratic time, which for an envelope of 64 KiB takes tens of milliseconds and for one of megabytes hours; the
/// addressing stays that of the message session.
///
/// As with every client, one thread at a time.
class VKMXPStanzaClient : public gloox::Client
{
public:
    using gloox::Client::Client;

    /// Sends a chat message (RFC 6121, 5) with this body to where the session's messages go now. The body holds no
    /// character that XML cannot carry.
    void SendBody(const gloox::MessageSession& session, const std::string& body);

    /// Who has answered with an error, and which; called inside the client, behind the library's own handlers, some of
    /// which keep it to themselves.
    using OnError = std::function<void(const gloox::JID& from, const gloox::Error& error)>;
    void WatchErrors(OnError watcher) { m_watcher = std::move(watcher); }

    void handleTag(gloox::Tag* tag) override;

private:
    OnError m_watcher;
};
