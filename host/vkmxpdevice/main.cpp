#include "DeviceCommand.h"

namespace {

constexpr vk::Option kOptions[] = {
    {"--server", "HOST", "Name or address of the XMPP server.", vk::Need::Required},
    {"--port", "N", "Its port; 5222 when not given."},
    {"--jid", "JID", "The device's account.", vk::Need::Required},
    {"--password", "P", "Its password.", vk::Need::Required},
    {"--resource", "NAME", "The resource to log in with; mxp when not given, which is where messages go."},
    {"--answer", "LIST", "What it says about each message, in this order, joined by commas: received, read, confirm, "
                         "reject, reply:CODE:TEXT. A comma inside a TEXT is written \"\\,\"."},
    {"--delay", "MS", "Milliseconds before each answer; none when not given."},
    {"--count", "N", "Ends after N messages, when they are answered; otherwise it goes on until it is stopped."},
    {"--transfer", "WAY", "How it takes attachments: socks5, inband, both or none; both when not given."},
    {"--save", "DIRECTORY", "Keeps the attachments there, decrypted; otherwise they are only looked at."},
    {"--json", nullptr, "One JSON object a line for each thing that happens."},
};

constexpr vk::Command kCommands[] = {{"", "", kOptions, &vk::RunDevice}};

constexpr vk::ManualSection kSections[] = {
    {"OUTPUT",
     "Event \"online\" when the login is done, \"message\" for each message with all its fields, \"answer\" for each "
     "answer sent, \"file\" for each attachment that came, with name, size and SHA-256 of its clear content, \"response\" for the server's response to a confirmation or rejection, \"other\" for anything else that "
     "arrives."},
    {"EXIT STATUS",
     "0  done, or stopped by a signal\n"
     "2  the call is wrong\n"
     "3  the login failed or the connection was lost"},
    {"EXAMPLE", "vkmxpdevice --server 127.0.0.1 --jid alice@localhost --password secret --answer received,read,confirm"},
};

constexpr vk::Program kProgram = {
    "vkmxpdevice",
    "a simulated mobile device",
    "Logs in to an XMPP server over TLS, whatever its certificate, as a mobile device does, shows the messages that come "
    "and answers them.",
    {},
    kCommands,
    kSections,
};

} // namespace

int main(int argc, char** argv) { return vk::RunProgram(kProgram, argc, argv); }
