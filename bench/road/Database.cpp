#include "Measurements.h"
#include "Statistics.h"

#include <json/json.h>

#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

/// \file
/// The stores' figures: taken by the database floor's own benchmarks, in a process of theirs, because a process has one
/// installation.

namespace {

/// What the database floor's benchmarks report of each one whose name the expression matches.
Json::Value Report(const std::string& expression)
{
    const std::string command = std::string(VK_BUILD_DIR "/vk_database_bench --benchmark_format=json "
                                                         "--benchmark_filter='") +
                                expression + "' 2>/dev/null";
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
    std::string text;
    std::array<char, 4096> block;
    while (output != nullptr && std::fgets(block.data(), block.size(), output.get()) != nullptr)
        text += block.data();
    Json::Value report;
    std::istringstream(text) >> report;
    for (const Json::Value& row : report["benchmarks"])
        if (row["error_occurred"].asBool())
            throw std::runtime_error(row["error_message"].asString());
    if (report["benchmarks"].empty())
        throw std::runtime_error("no benchmark matches " + expression);
    return report["benchmarks"];
}

/// A benchmark's name with its argument.
std::string NameOf(const Json::Value& row)
{
    const std::string name = row["name"].asString();
    return name.substr(0, name.find("/iterations"));
}

/// Seconds of each benchmark, by name.
std::map<std::string, double> SecondsOf(const std::string& expression)
{
    const std::map<std::string, double> units{{"ns", 1e-9}, {"us", 1e-6}, {"ms", 1e-3}};
    std::map<std::string, double> seconds;
    for (const Json::Value& row : Report(expression))
        seconds[NameOf(row)] = row["real_time"].asDouble() * units.at(row["time_unit"].asString());
    return seconds;
}

/// A benchmark beside its bare one, in parts of a second.
Figure BesideBare(const std::string& name, double parts)
{
    const auto seconds = SecondsOf("^" + name + "(_bare)?$");
    return {seconds.at(name) * parts, seconds.at(name + "_bare") * parts};
}

} // namespace

Figure QueueAdd(Stage&)
{
    const auto seconds = SecondsOf("^queue_add(_bare)?$");
    return {1 / seconds.at("queue_add"), 1 / seconds.at("queue_add_bare")};
}

Figure QueuePoll(Stage&)
{
    const auto seconds = SecondsOf("^queue_poll_(1k|100k(_bare|_statement)?)$");
    const auto us = [&](const char* name) { return seconds.at(name) * 1e6; };
    return {us("queue_poll_100k"), us("queue_poll_100k_statement"),
            "bare with the tests for the files and the locks on the rows: " +
                ShortNumber(us("queue_poll_100k_bare")) + " us; this one among 1,000 rows: " +
                ShortNumber(us("queue_poll_1k")) + " us"};
}

Figure QueueProcesses(Stage&)
{
    std::map<std::string, double> rates;
    for (const Json::Value& row : Report("^queue_processes/"))
        rates[NameOf(row)] = row["items_per_second"].asDouble();
    const auto rate = [&](int count) { return rates.at("queue_processes/" + std::to_string(count)); };
    return {rate(8), rate(1),
            "bare: one process; two " + ShortNumber(rate(2)) + ", four " + ShortNumber(rate(4))};
}

Figure FactoryHit(Stage&) { return {SecondsOf("^factory_hit$").at("factory_hit") * 1e9, 0}; }
Figure ReceiverById(Stage&) { return BesideBare("receiver_by_id", 1e6); }
Figure ReceiverListTenThousand(Stage&) { return BesideBare("receiver_list_10000", 1e3); }
