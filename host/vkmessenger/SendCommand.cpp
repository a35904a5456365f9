#include "SendCommand.h"

#include "DriverSession.h"
#include "MessageFileReader.h"
#include "MessageRun.h"
#include "QueueCommand.h"
#include "StopSignal.h"

#include <set>

namespace vk {

namespace {

constexpr long long kDefaultWaitSeconds = 30;
constexpr long long kLongestWaitSeconds = 7 * 24 * 3600;

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

int SendFiles(const Arguments& arguments, std::chrono::seconds wait)
{
    CheckedRoot(arguments);
    auto files = ReadMessages(arguments.All("--message"));
    Timeline timeline(arguments.Has("--json") ? Timeline::Form::Json : Timeline::Form::Readable, stdout);
    DriverSession session(arguments);
    const std::atomic<bool>& stop = StopOnSignals();
    MessageRun run(session.Exchange(), timeline, stop);
    for (auto& file : files) {
        if (stop)
            break;
        const std::string jobId = file->strJobID;
        run.Send(std::move(file));
        session.TellErrors(jobId);
    }
    run.WaitForAnswers(wait);
    session.TellErrors("while waiting");
    session.Exchange().End();
    // What the driver pushed back at the end still counts.
    run.ShowReports();
    return run.AnyFailed() ? kExitFailed : kExitOk;
}

} // namespace

int RunSend(const Arguments& arguments)
{
    const std::chrono::seconds wait(arguments.Number("--wait", 0, kLongestWaitSeconds, kDefaultWaitSeconds));
    if (arguments.Has("--queue") && arguments.Has("--message"))
        throw UsageError("--queue and --message do not go together");
    if (arguments.Has("--queue"))
        return SendQueue(arguments, wait);
    if (!arguments.Has("--message"))
        throw UsageError("--message is missing, or --queue");
    RequireNoQueueOptions(arguments);
    return SendFiles(arguments, wait);
}

} // namespace vk
