#include "SendCommand.h"

#include "DriverLibrary.h"
#include "HostLogger.h"
#include "MessageFileReader.h"
#include "MessageRun.h"
#include "TextLine.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <unistd.h>

namespace vk {

namespace {

constexpr long long kDefaultWaitSeconds = 30;
constexpr long long kLongestWaitSeconds = 7 * 24 * 3600;

std::atomic<bool> g_stop{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

void StopOnSignals()
{
    struct sigaction action{};
    action.sa_handler = [](int) { g_stop = true; };
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

/// The installation root as an absolute path, with the directories that a driver works in.
std::string CheckedRoot(const std::string& given)
{
    std::error_code error;
    const auto root = std::filesystem::canonical(given, error);
    if (error)
        throw InputError("--root: " + given + ": " + error.message());
    for (const char* folder : {"config", "temp", "logs"}) {
        const std::string path = root / folder;
        if (!std::filesystem::is_directory(path, error))
            throw InputError("--root: " + path + " is no directory; vkadmin --root " + given + " init makes a root");
        if (access(path.c_str(), R_OK | X_OK) != 0)
            throw InputError("--root: " + path + ": " + std::generic_category().message(errno));
    }
    return root;
}

/// All files are read before the first is sent: a mistake in the last must not leave the others half done.
std::vector<std::unique_ptr<HostMessageFile>> ReadMessages(const std::vector<std::string>& paths)
{
    std::vector<std::unique_ptr<HostMessageFile>> files;
    std::set<std::string> jobs;
    for (const std::string& path : paths) {
        files.push_back(ReadMessageFile(path));
        if (!jobs.insert(files.back()->strJobID).second)
            throw InputError(path + ": job_id '" + files.back()->strJobID + "' is used by another file");
    }
    return files;
}

/// A driver that is configured and set up; cleaned up at the end.
class RunningDriver
{
public:
    RunningDriver(VKProtocolDriverInterface& driver, HostLogger& logger, const std::string& logFile) : m_driver(driver)
    {
        std::map<std::string, std::string> settings;
        VKMessengerInstConfBasic messenger;
        if (m_driver.Configure(settings) && m_driver.Setup(&messenger))
            return;
        m_driver.Cleanup();
        const std::string why = logger.TakeErrors();
        throw std::runtime_error("the driver could not be configured: " + (why.empty() ? "see " + logFile : why));
    }
    ~RunningDriver() { m_driver.Cleanup(); }
    RunningDriver(const RunningDriver&) = delete;
    RunningDriver& operator=(const RunningDriver&) = delete;

private:
    VKProtocolDriverInterface& m_driver;
};

/// What the driver has logged as errors meanwhile, in one line on standard error: the timeline tells what came of a
/// message, this tells an operator why.
void TellErrors(HostLogger& logger, const std::string& about)
{
    const std::string errors = OneLine(logger.TakeErrors());
    if (!errors.empty())
        std::fprintf(stderr, "vkmessenger: %s: %s\n", Printable(about).c_str(), errors.c_str());
}

} // namespace

int RunSend(const Arguments& arguments)
{
    const std::string root = CheckedRoot(arguments.Text("--root"));
    const std::chrono::seconds wait(arguments.Number("--wait", 0, kLongestWaitSeconds, kDefaultWaitSeconds));
    auto files = ReadMessages(arguments.All("--message"));
    const std::string logFile = root + "/logs/vkmessenger.log";
    HostLogger logger("vkmessenger", logFile,
                      CodeOfText(kLogLevelWords, arguments.Text("--log-level"), VKLogInterface::INFO));

    // The driver's library finds its installation by itself; this is how it learns of another than the default one.
    setenv("VKMXP_ROOT", root.c_str(), 1);
    VKMsgFileQueue queue;
    Timeline timeline(arguments.Has("--json") ? Timeline::Form::Json : Timeline::Form::Readable, stdout);
    DriverLibrary library(arguments.Text("--driver", DriverLibrary::DefaultPath()));
    VKProtocolDriverInterface& driver = library.Driver();
    driver.m_pobjLogger = &logger;
    driver.m_pobjReportsMngr = nullptr;
    driver.m_pobjMsgFileQueue = &queue;

    StopOnSignals();
    MessageRun run(driver, queue, timeline, g_stop);
    {
        const RunningDriver running(driver, logger, logFile);
        for (auto& file : files) {
            if (g_stop)
                break;
            const std::string jobId = file->strJobID;
            run.Send(std::move(file));
            TellErrors(logger, jobId);
        }
        run.WaitForAnswers(wait);
        TellErrors(logger, "while waiting");
    }
    // The driver has let go of all files; what it pushed back at the end still counts.
    run.ShowReports();
    return run.AnyFailed() ? kExitFailed : kExitOk;
}

} // namespace vk
