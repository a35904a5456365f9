#include "Measurements.h"
#include "Statistics.h"
#include "TempDir.h"
#include "VKLog.h"
#include "VKsysEventLogFileWriter.h"
#include "VKsysEventLogInterface.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace {

constexpr const char* kText = "Job ID: [20240101120000_4711] >> Sending message to Receiver [device7@localhost], "
                              "Carrier [carrier0] successfully completed.";
/// As many as a burst of alarms makes, and short enough that the writer does not have the core for itself meanwhile.
constexpr int kBurst = 500;
constexpr int kBursts = 40;

/// A started logger of that name that writes to a file of the directory.
VKsysEventLogInterface& MakeLogger(const char* name, const TempDir& dir, VKLogInterface::LogLevel level)
{
    auto writer = std::make_unique<VKsysEventLogFileWriter>();
    writer->setFilePath(dir / std::string(name) + "_log.txt");
    writer->setPerProcessFile(false);
    writer->setNumBytesPerFile(100U << 20);
    writer->setNumOfFiles(1);
    VKsysEventLogInterface* const logger =
        VKsysEventLogInterface::CreateInstance(name, VKsysEventLogInterface::MULTI_THREADED, std::move(writer), level);
    if (!logger || !logger->Start())
        throw std::runtime_error("the event log does not start");
    return *logger;
}

/// Waits until the file has grown past all records that were queued.
void AwaitWritten(const std::string& path, std::uintmax_t bytes)
{
    const auto deadline = Clock::now() + std::chrono::seconds(30);
    while (!std::filesystem::exists(path) || std::filesystem::file_size(path) < bytes) {
        if (Clock::now() > deadline)
            throw std::runtime_error("the event log's file does not grow");
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

} // namespace

Figure LogOff(Stage&)
{
    const TempDir dir;
    VKLogInterface* const logger = &MakeLogger("bench off", dir, VKLogInterface::WARN);
    std::atomic<int> level{VKLogInterface::WARN};
    const std::string job = "20240101120000_4711";
    const auto [ours, bare] = NanosecondsInTurn(
        200, 100000, [&] { VK_LOG_DEBUG(logger, "Job ID: [%s] >> Message for %d.", job.c_str(), 7); },
        [&] {
            if (level.load() <= VKLogInterface::DEBUG)
                throw std::runtime_error("cannot be");
        });
    return {ours, bare, "bare: a compare with an atomic level"};
}

Figure LogQueued(Stage&)
{
    const TempDir dir;
    VKsysEventLogInterface& logger = MakeLogger("bench queued", dir, VKLogInterface::INFO);
    const std::string path = dir / "bench queued_log.txt";
    const int plain = open((dir / "plain.txt").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    const std::string text(kText);
    std::vector<double> ours;
    std::vector<double> bare;
    for (int burst = 0; burst <= kBursts; ++burst) {
        const auto start = Clock::now();
        for (int i = 0; i < kBurst; ++i)
            logger.WriteInfo(text, __LINE__, const_cast<char*>(__FILE__));
        const auto half = Clock::now();
        for (int i = 0; i < kBurst; ++i)
            if (write(plain, kText, text.size()) < 0)
                throw std::system_error(errno, std::generic_category(), "write");
        const auto end = Clock::now();
        AwaitWritten(path, static_cast<std::uintmax_t>(burst + 1) * kBurst * text.size());
        if (burst == 0)
            continue; // for warmth
        ours.push_back(Microseconds(half - start) * 1000 / kBurst);
        bare.push_back(Microseconds(end - half) * 1000 / kBurst);
    }
    close(plain);
    logger.Stop();
    return {Median(ours), Median(bare), "bare: a write() of the same text to an open file"};
}
