#include "Measurement.h"
#include "Measurements.h"
#include "Stage.h"
#include "Transfers.h"

#include <json/json.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>

namespace {

/// Everything that is measured, with what it has to reach.
const Measurement kMeasurements[] = {
    {"handoff_p50", "us", {1500, 2.5, {}}, HandoffP50},
    {"handoff_p99", "us", {10000, {}, {}}, HandoffP99},
    {"handoff_p50_10_connections", "us", {1500, 2.5, {}}, HandoffP50TenConnections},
    {"handoff_p50_1000_sessions", "us", {1500, 2.5, {}}, HandoffP50ThousandSessions},
    {"answer_p50", "us", {1500, 2.5, {}}, AnswerP50},
    {"throughput", "1/s", {{}, {}, 0.9}, Throughput},
    {"queue_messages_per_second", "1/s", {{}, {}, {}, 300}, QueueMessagesPerSecond},
    {"idle_cpu", "% of a core", {0.5, {}, {}}, IdleCpu},
    {"idle_cpu_no_connection", "% of a core", {0.5, {}, {}}, IdleCpuNoConnection},
    {"round_10000_sessions", "us", {1000, {}, {}}, RoundOverTenThousand},
    {"send_call_p50", "us", {1000, {}, {}}, SendCallP50},
    {"packet_codec", "ns", {{}, 2.5, {}}, PacketCodec},
    {"envelope_1000", "ns", {{}, 1.25, {}}, EnvelopeOfThousand},
    {"packet_kinds", "ns", {{}, 3.0, {}}, PacketKinds},
    {"recipients_10000", "ns", {{}, 3.0, {}}, RecipientsTenThousand},
    {"queue_add", "1/s", {{}, {}, 0.7}, QueueAdd},
    {"queue_poll_100k", "us", {{}, 2.0, {}}, QueuePoll},
    {"queue_processes_8", "1/s", {{}, {}, 1.0}, QueueProcesses},
    {"factory_hit", "ns", {200, {}, {}}, FactoryHit},
    {"receiver_by_id", "us", {{}, 2.0, {}}, ReceiverById},
    {"receiver_list_10000", "ms", {{}, 2.0, {}}, ReceiverListTenThousand},
    {"status_list_1000", "1/s", {{}, {}, 0.7}, StatusListOfThousand},
    {"log_off", "ns", {10, {}, {}}, LogOff},
    {"log_queued", "ns", {1500, {}, {}}, LogQueued},
    {"connect_p50", "us", {{}, 1.2, {}}, ConnectP50},
    {"reconnect_growth_kib", "KiB", {512, {}, {}}, ReconnectGrowth},
    {"session_bytes", "B", {4096, {}, {}}, SessionBytes},
    {"socks5_rate", "MB/s", {{}, {}, 0.3, 400}, Socks5Rate},
    {"first_byte", "ms", {50, {}, {}}, FirstByte},
    {"inband_rate", "MB/s", {{}, {}, {}, 2}, InBandRate},
    {"encrypt_rate", "MB/s", {{}, {}, 0.8}, EncryptRate},
    {"handoff_during_transfer", "us", {10000, {}, {}}, HandoffDuringTransfer},
    {"idle_sender_cpu", "% of a core", {0.001, {}, {}}, IdleSenderCpu},
    {"transfers_100", "ms", {100, {}, {}}, HundredTransfers},
};

constexpr const char* kHelp =
    "Usage: vkbench [NAME...] [--json FILE]\n"
    "\n"
    "Measures the named figures, or all, each beside the bare library at the same work in the same run, and prints "
    "them\n"
    "with their goals. Needs the server program prosody.\n"
    "\n"
    "  --json FILE  also writes the figures to FILE, a JSON array\n"
    "  --help       this text\n"
    "\n"
    "Exit: 0 all was measured, whether a goal was met or not; 1 a measurement failed; 2 the call was wrong.\n"
    "\n"
    "Names:\n";

struct Call
{
    std::vector<const Measurement*> wanted;
    std::string jsonFile;
    bool help = false;
};

std::string Names()
{
    std::string names;
    for (const Measurement& row : kMeasurements)
        names += std::string("  ") + row.name + "\n";
    return names;
}

/// Throws std::invalid_argument with a line for the user.
Call ReadCall(const std::vector<std::string>& arguments)
{
    Call call;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "--help") {
            call.help = true;
        } else if (*argument == "--json") {
            if (++argument == arguments.end())
                throw std::invalid_argument("--json needs a FILE");
            call.jsonFile = *argument;
        } else {
            const auto row = std::find_if(std::begin(kMeasurements), std::end(kMeasurements),
                                          [&](const Measurement& known) { return *argument == known.name; });
            if (row == std::end(kMeasurements))
                throw std::invalid_argument("unknown name '" + *argument + "'; the names are:\n" + Names());
            call.wanted.push_back(row);
        }
    }
    if (call.wanted.empty())
        for (const Measurement& row : kMeasurements)
            call.wanted.push_back(&row);
    return call;
}

Json::Value NumberOrNull(double number) { return std::isfinite(number) ? Json::Value(number) : Json::Value(); }

Json::Value ToJson(const Measurement& row, const Figure& figure)
{
    Json::Value object;
    object["name"] = row.name;
    object["value"] = NumberOrNull(figure.value);
    object["unit"] = row.unit;
    object["bare"] = NumberOrNull(figure.bare);
    object["ratio"] = NumberOrNull(figure.Ratio());
    object["goal"] = row.goal.Text(row.unit);
    object["met"] = row.goal.IsMetBy(figure);
    return object;
}

void PrintRow(const Measurement& row, const Figure& figure)
{
    std::printf("%-27s %10s %-11s %10s %7s  %-28s %-3s%s%s\n", row.name, ShortNumber(figure.value).c_str(), row.unit,
                ShortNumber(figure.bare).c_str(), ShortNumber(figure.Ratio()).c_str(), row.goal.Text(row.unit).c_str(),
                row.goal.IsMetBy(figure) ? "yes" : "NO", figure.note.empty() ? "" : "  ", figure.note.c_str());
    std::fflush(stdout);
}

bool WriteJson(const std::string& path, const Json::Value& figures)
{
    std::ofstream file(path);
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["precision"] = 6;
    file << Json::writeString(builder, figures) << '\n';
    if (!file.flush()) {
        std::cerr << "vkbench: cannot write '" << path << "'\n";
        return false;
    }
    return true;
}

/// Measures one after the other; a failure does not keep the others from being measured.
int Measure(const Call& call)
{
    Stage stage;
    Json::Value figures(Json::arrayValue);
    int failures = 0;
    std::printf("%-27s %10s %-11s %10s %7s  %-28s %s\n", "name", "value", "unit", "bare", "ratio", "goal", "met");
    for (const Measurement* row : call.wanted) {
        try {
            const Figure figure = row->measure(stage);
            PrintRow(*row, figure);
            figures.append(ToJson(*row, figure));
        } catch (const std::exception& error) {
            std::cerr << "vkbench: " << row->name << ": " << error.what() << '\n';
            ++failures;
        }
    }
    const bool written = call.jsonFile.empty() || WriteJson(call.jsonFile, figures);
    return failures == 0 && written ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    std::signal(SIGPIPE, SIG_IGN);
    try {
        if (arguments.size() == 3 && arguments[0] == "--idle-process")
            return RunIdleProcess(arguments[1], std::stoi(arguments[2]));
        const Call call = ReadCall(arguments);
        if (call.help) {
            std::cout << kHelp << Names();
            return 0;
        }
        return Measure(call);
    } catch (const std::invalid_argument& error) {
        std::cerr << "vkbench: " << error.what() << '\n';
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "vkbench: " << error.what() << '\n';
        return 1;
    }
}
