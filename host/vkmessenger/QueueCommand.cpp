#include "QueueCommand.h"

#include "AdminRoot.h"
#include "DriverSession.h"
#include "QueueFeeder.h"
#include "ServiceLock.h"
#include "StopSignal.h"
#include "VKDatabase.h"
#include "VKLog.h"

#include <algorithm>
#include <limits>

namespace vk {

namespace {

constexpr long long kDay = 86400;

/// The numbers of a queue's settings, with their limits; what is given when an option is not stands in QueueSettings.
struct NumberOption
{
    const char* name;
    long long QueueSettings::*member;
    long long least;
    long long most;
};
constexpr NumberOption kNumbers[] = {
    {"--poll", &QueueSettings::pollMilliseconds, 10, 60000},
    {"--settle", &QueueSettings::settleMilliseconds, 0, 600000},
    // A service that is silent for 20 minutes is taken for dead.
    {"--query-interval", &QueueSettings::querySeconds, 1, 600},
    {"--answer-limit", &QueueSettings::answerSeconds, 1, 366 * kDay},
    {"--expire-after", &QueueSettings::expireSeconds, 1, 366 * kDay},
    {"--tries", &QueueSettings::tries, 1, 1000},
    {"--retry-after", &QueueSettings::retrySeconds, 1, kDay},
};
constexpr const char* kOthers[] = {"--follow", "--service"};

/// Where messages end or wait for a time; what is ready there is not sent from there.
constexpr int kNotSentFrom[] = {2, 3, kArchiveQueue, kErrorQueue, 9, kWaitingQueue};

/// The name stands in rows of the queue and in a file's name.
std::string ServiceName(const Arguments& arguments)
{
    constexpr std::size_t kLongest = 50;
    const std::string name = arguments.Text("--service", "vkmessenger");
    const bool bad =
        name.empty() || name.size() > kLongest ||
        std::any_of(name.begin(), name.end(), [](unsigned char c) { return c <= ' ' || c > '~' || c == '/'; });
    if (bad)
        throw UsageError("--service: '" + name +
                         "' is no name of 1 to 50 printable ASCII characters without blank and /");
    return name;
}

QueueSettings SettingsFrom(const Arguments& arguments, std::chrono::seconds wait)
{
    QueueSettings settings;
    settings.queue = static_cast<int>(arguments.Number("--queue", 1, std::numeric_limits<int>::max(), 0));
    if (std::count(std::begin(kNotSentFrom), std::end(kNotSentFrom), settings.queue) != 0)
        throw UsageError("--queue: nothing is sent from queue " + std::to_string(settings.queue));
    settings.service = ServiceName(arguments);
    settings.follow = arguments.Has("--follow");
    settings.waitSeconds = wait.count();
    for (const NumberOption& option : kNumbers)
        settings.*option.member = arguments.Number(option.name, option.least, option.most, settings.*option.member);
    return settings;
}

VKDBsystem& OpenDatabase()
{
    // The driver asks for the database on threads of its own.
    VKDatabase* const database = VKDatabase::getVKMultiThreadedDatabase(nullptr, true);
    if (!database->isReady() && !database->openDatabase())
        throw std::runtime_error("the database cannot be opened: " + database->getLastErrorString());
    return *database->getDBSystemObject();
}

QueueRouter OpenQueues(StoreWatch& watch, const QueueSettings& settings)
{
    const StoreWatch::Operation watched(watch);
    return {OpenDatabase(), settings.queue, settings.service};
}

/// On the watch's thread.
void TellOfSilence(DriverSession& session, const QueueSettings& settings, std::chrono::seconds time)
{
    VK_LOG_ERROR(&session.Logger(),
                 "Queue %d: the store has not answered for %lld seconds: one of its files is locked or gone, or its "
                 "server is silent. Waiting on.",
                 settings.queue, static_cast<long long>(time.count()));
    session.TellErrors(settings.service);
}

std::string ProtocolPattern(VKProtocolDriverInterface& driver)
{
    std::string protocol = driver.GetProtocolName();
    std::transform(protocol.begin(), protocol.end(), protocol.begin(), [](unsigned char c) { return std::tolower(c); });
    return protocol + "*";
}

} // namespace

void RequireNoQueueOptions(const Arguments& arguments)
{
    const auto require = [&](const char* name) {
        if (arguments.Has(name))
            throw UsageError(std::string(name) + " goes with --queue only");
    };
    for (const NumberOption& option : kNumbers)
        require(option.name);
    for (const char* name : kOthers)
        require(name);
}

int SendQueue(const Arguments& arguments, std::chrono::seconds wait)
{
    QueueSettings settings = SettingsFrom(arguments, wait);
    const std::atomic<bool>& stop = StopOnSignals();
    const std::string root = CheckedRoot(arguments);
    UseRoot(arguments);
    const ServiceLock lock(root + "/temp", settings.queue, settings.service);
    DriverSession session(arguments);
    StoreWatch watch([&](std::chrono::seconds time) { TellOfSilence(session, settings, time); });
    QueueRouter router = OpenQueues(watch, settings);
    Timeline timeline(arguments.Has("--json") ? Timeline::Form::Json : Timeline::Form::Readable, stdout);
    settings.protocol = ProtocolPattern(session.Exchange().Driver());
    WaitingRoom waiting(router, settings, root, session.Logger());
    AnswerLine line(session.Library().IsClassLibrary(), session.Logger());
    QueueFeeder feeder({settings, router, watch, waiting, session.Exchange(), line, timeline, session.Logger(),
                        [&](const std::string& about) { session.TellErrors(about); }, stop});
    feeder.Run();
    return feeder.AnyFailed() ? kExitFailed : kExitOk;
}

} // namespace vk
