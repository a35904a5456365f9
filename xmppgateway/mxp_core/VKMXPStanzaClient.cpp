#include "VKMXPStanzaClient.h"

#include "VKescape.h"

#include <gloox/tag.h>

namespace {

/// A carriage return would be taken for a line feed by the peer's parser.
constexpr vk::Escape kStanzaRows[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'\'', "&apos;"}, {'"', "&quot;"}, {'\r', "&#xd;"},
};
constexpr vk::EscapeTable kStanzaText(kStanzaRows);

} // namespace

void VKMXPStanzaClient::SendBody(const gloox::MessageSession& session, const std::string& body)
{
    std::string stanza;
    stanza.reserve(body.size() + body.size() / 2 + 256);
    stanza += "<message to='";
    kStanzaText.Append(stanza, session.target().full());
    stanza += "' id='";
    stanza += getID();
    stanza += "' type='chat'><body>";
    kStanzaText.Append(stanza, body);
    stanza += "</body>";
    if (!session.threadID().empty()) {
        stanza += "<thread>";
        kStanzaText.Append(stanza, session.threadID());
        stanza += "</thread>";
    }
    stanza += "</message>";
    gloox::ClientBase::send(stanza);
}

void VKMXPStanzaClient::handleTag(gloox::Tag* tag)
{
    gloox::Client::handleTag(tag);
    if (m_watcher && tag && tag->name() == "iq" && tag->hasAttribute("type", "error"))
        m_watcher(gloox::JID(tag->findAttribute("from")), gloox::Error(tag->findChild("error")));
}
