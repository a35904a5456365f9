#include "DeviceCommand.h"

#include "Device.h"
#include "VKField.h"

#include <gloox/siprofileft.h>

#include <csignal>
#include <limits>

namespace vk {

namespace {

std::atomic<bool> g_stop{false};

void StopOnSignals()
{
    struct sigaction action{};
    action.sa_handler = [](int) { g_stop = true; };
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int TransferFrom(const std::string& word)
{
    constexpr int kNoWord = -1;
    constexpr CodeText<int> kWords[] = {
        {gloox::SIProfileFT::FTTypeS5B, "socks5"},
        {gloox::SIProfileFT::FTTypeIBB, "inband"},
        {gloox::SIProfileFT::FTTypeS5B | gloox::SIProfileFT::FTTypeIBB, "both"},
        {0, "none"},
    };
    const int types = CodeOfText(kWords, word, kNoWord);
    if (types == kNoWord)
        throw UsageError("--transfer: '" + word + "' is none of socks5, inband, both, none");
    return types;
}

DeviceSettings SettingsFrom(const Arguments& arguments)
{
    constexpr int kHighestPort = 65535;
    constexpr int kDefaultPort = 5222;
    constexpr int kLongestDelay = 3600 * 1000;
    DeviceSettings settings;
    settings.server = arguments.Text("--server");
    settings.port = static_cast<int>(arguments.Number("--port", 1, kHighestPort, kDefaultPort));
    if (!settings.jid.setJID(arguments.Text("--jid")) || settings.jid.username().empty())
        throw UsageError("--jid: '" + arguments.Text("--jid") + "' is no JID of an account");
    if (arguments.Has("--resource") || settings.jid.resource().empty())
        settings.jid.setResource(arguments.Text("--resource", "mxp"));
    settings.password = arguments.Text("--password");
    settings.answers = ParseAnswers(arguments.Text("--answer"));
    settings.delay = std::chrono::milliseconds(arguments.Number("--delay", 0, kLongestDelay, 0));
    settings.count = arguments.Number("--count", 1, std::numeric_limits<long long>::max(), 0);
    settings.transfer = TransferFrom(arguments.Text("--transfer", "both"));
    settings.saveDirectory = arguments.Text("--save", "");
    return settings;
}

} // namespace

int RunDevice(const Arguments& arguments)
{
    DeviceOutput output(arguments.Has("--json"), stdout);
    Device device(SettingsFrom(arguments), output, g_stop);
    StopOnSignals();
    device.Run();
    return kExitOk;
}

} // namespace vk
