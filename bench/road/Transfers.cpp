#include "Transfers.h"

#include "FileDevice.h"
#include "PlainCopy.h"
#include "Stage.h"
#include "TempDir.h"
#include "VKCipherStream.h"
#include "VKMXPCoreManager.h"
#include "VKMXPSecureFiles.h"
#include "VKMXPmMessage.h"

#include <openssl/evp.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <thread>

namespace {

constexpr const char* kConnection = "files";
constexpr std::size_t kLarge = 50'000'000; // bytes
constexpr int kBlockKiB = 65;              // of a SOCKS5 stream, as it is unless set
constexpr int kSocks5 = gloox::SIProfileFT::FTTypeS5B;
constexpr int kInBand = gloox::SIProfileFT::FTTypeIBB;

double MegabytesPerSecond(double bytes, Clock::duration time) { return bytes / 1e6 / Seconds(time); }

double Milliseconds(Clock::duration time) { return Microseconds(time) / 1000; }

/// A connection of the system that sends files, a device that takes them, and the files.
class Scene
{
public:
    Scene(Stage& stage, int type) : m_host(stage.System()), m_device(accounts::Device(1), stage.Server().Port(), type)
    {
        std::string error;
        if (!Manager().StartC2SConnection(kConnection, "127.0.0.1", stage.Server().Port(),
                                          accounts::Jid(accounts::Host(1)), accounts::Host(1), "files", true,
                                          "127.0.0.1", FreePort(), kBlockKiB, 60, &error))
            throw std::runtime_error("no connection: " + error);
    }
    ~Scene() { m_host.Disconnect(kConnection); }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    VKMXPCoreManager& Manager() { return m_host.Manager(); }
    FileDevice& Device() { return m_device; }

    std::string MakeFile(const std::string& name, std::size_t size) const
    {
        return m_files.Write(name, std::string(size, 'x'));
    }

    void SendFile(const std::string& path)
    {
        const std::string jid = accounts::Jid(accounts::Device(1));
        Manager().StartC2CSession(jid, kConnection, "mxp", false);
        auto message = std::make_unique<VKMXPmMessage>();
        message->m_strJobID = "transfer " + std::to_string(++m_sent);
        message->m_strBody = "see the plans";
        message->m_bValid = true;
        message->AttachFiles({{path, "key of " + message->m_strJobID}});
        int sequence = 0;
        if (!Manager().Send(message.get(), jid, kConnection, sequence))
            throw std::runtime_error("a message with a file was not taken");
        static_cast<void>(message.release()); // the manager's now
    }

    /// One after the other.
    std::vector<FileDevice::File> SendEach(const std::string& path, std::size_t count)
    {
        std::vector<FileDevice::File> files;
        for (std::size_t i = 0; i < count; ++i) {
            SendFile(path);
            files = m_device.Await(i + 1);
        }
        return files;
    }

private:
    Host& m_host;
    FileDevice m_device;
    TempDir m_files;
    int m_sent = 0;
};

double MedianRate(const std::vector<FileDevice::File>& files)
{
    std::vector<double> rates;
    for (const FileDevice::File& file : files)
        rates.push_back(MegabytesPerSecond(static_cast<double>(file.got), file.last - file.first));
    return Median(rates);
}

} // namespace

Figure Socks5Rate(Stage& stage)
{
    constexpr std::size_t kFiles = 9;
    Scene scene(stage, kSocks5);
    const std::string path = scene.MakeFile("plan", kLarge);
    const double ours = MedianRate(scene.SendEach(path, kFiles));
    std::vector<double> bare;
    for (std::size_t i = 0; i < kFiles; ++i)
        bare.push_back(MegabytesPerSecond(kLarge, PlainCopy(path, kBlockKiB * 1024)));
    return {ours, Median(bare), "bare: a plain socket copy in the same blocks"};
}

Figure FirstByte(Stage& stage)
{
    Scene scene(stage, kSocks5);
    const std::string path = scene.MakeFile("plan", kLarge);
    std::vector<double> times;
    std::vector<double> offers;
    for (const FileDevice::File& file : scene.SendEach(path, 9)) {
        times.push_back(Milliseconds(file.first - file.discoAnswered));
        offers.push_back(Milliseconds(file.offered - file.discoAnswered));
    }
    return {Median(times), 0, "the device answers at once; offered after " + ShortNumber(Median(offers)) + " ms"};
}

Figure InBandRate(Stage& stage)
{
    constexpr std::size_t kSize = 5'000'000;
    Scene scene(stage, kInBand);
    return {MedianRate(scene.SendEach(scene.MakeFile("plan", kSize), 3)), 0};
}

namespace {

/// How far the resident memory, in bytes, has grown beyond what it is now.
class PeakMemory
{
public:
    PeakMemory()
    {
        std::ofstream("/proc/self/clear_refs") << 5; // the peak counts from now on
        m_before = Now();
    }
    static double Now()
    {
        std::ifstream status("/proc/self/status");
        for (std::string word; status >> word;)
            if (word == "VmHWM:") {
                double kib = 0;
                status >> kib;
                return kib * 1024;
            }
        return 0;
    }
    double Growth() const { return Now() - m_before; }

private:
    double m_before = 0;
};

double OpenSslRate(const std::string& key, const std::string& data)
{
    const auto start = Clock::now();
    const std::unique_ptr<unsigned char[]> out(new unsigned char[data.size() + 32]);
    const std::unique_ptr<EVP_CIPHER_CTX, void (*)(EVP_CIPHER_CTX*)> context(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    int body = 0;
    int tail = 0;
    EVP_EncryptInit_ex(context.get(), EVP_aes_256_ecb(), nullptr, reinterpret_cast<const unsigned char*>(key.data()),
                       nullptr);
    EVP_EncryptUpdate(context.get(), out.get(), &body, reinterpret_cast<const unsigned char*>(data.data()),
                      static_cast<int>(data.size()));
    EVP_EncryptFinal_ex(context.get(), out.get() + body, &tail);
    return MegabytesPerSecond(static_cast<double>(data.size()), Clock::now() - start);
}

double OurRate(const std::string& key, const std::string& data)
{
    const auto start = Clock::now();
    unsigned char* out = nullptr;
    int length = 0;
    std::string error;
    const bool done =
        VKEncryption::SharedKeyEncrypt(reinterpret_cast<const unsigned char*>(key.data()), static_cast<int>(key.size()),
                                       data, out, length, error, VK_ENCRYPT_AES256_ECB);
    const std::unique_ptr<unsigned char[]> owned(out);
    if (!done)
        throw std::runtime_error(error);
    return MegabytesPerSecond(static_cast<double>(data.size()), Clock::now() - start);
}

/// Securing a file from disk to disk: its rate, and how often the file would fit into the memory that it takes.
std::pair<double, double> SecuringRate(const std::string& path)
{
    std::vector<double> rates;
    vk::SecureFiles copies;
    const PeakMemory memory;
    for (int i = 0; i < 5; ++i) {
        vk::SecureFiles::FileList files = {{path, "key"}};
        std::string error;
        const auto start = Clock::now();
        if (!copies.Make(files, error, {}))
            throw std::runtime_error(error);
        rates.push_back(MegabytesPerSecond(kLarge, Clock::now() - start));
        copies.Delete();
    }
    return {Median(rates), memory.Growth() / kLarge};
}

} // namespace

Figure EncryptRate(Stage& stage)
{
    constexpr double kMostMemory = 2.2; // times the file
    stage.System();                     // whose temporary directory is used
    const std::string data(kLarge, 'x');
    const std::string key(32, 'k');
    std::vector<double> ours;
    std::vector<double> bare;
    for (int i = 0; i < 15; ++i) {
        ours.push_back(OurRate(key, data));
        bare.push_back(OpenSslRate(key, data));
    }
    const TempDir files;
    const auto [rate, memory] = SecuringRate(files.Write("plan", data));
    Figure figure{Median(ours), Median(bare),
                  "a file is secured at " + ShortNumber(rate) + " MB/s in " + ShortNumber(memory) +
                      " times its size of memory"};
    figure.sound = memory <= kMostMemory;
    return figure;
}

Figure HandoffDuringTransfer(Stage& stage)
{
    constexpr int kSamples = 500;
    Scene scene(stage, kSocks5);
    const std::string path = scene.MakeFile("plan", kLarge);
    Inbox inbox;
    Clients devices(stage);
    devices.Add(accounts::Device(2), "mxp",
                [&inbox](const std::string& from, const std::string& body) { inbox.Put(from, body); });
    const std::string other = accounts::Jid(accounts::Device(2));
    scene.Manager().StartC2CSession(other, kConnection, "mxp", false);
    std::vector<double> times;
    std::size_t files = 0;
    while (times.size() < kSamples) {
        scene.SendFile(path);
        std::atomic<bool> travels{true};
        std::thread watch([&] {
            scene.Device().Await(files + 1);
            travels = false;
        });
        while (travels) {
            const unsigned long next = inbox.Count() + 1;
            const auto start = Clock::now();
            scene.Manager().Send("ping", other, kConnection);
            times.push_back(Microseconds(inbox.Await(next) - start));
        }
        watch.join();
        ++files;
    }
    return {Median(times), 0,
            std::to_string(files) + " files; 99 of 100 within " + ShortNumber(Quantile(times, 0.99)) + " us"};
}

namespace {

std::set<std::string> Threads()
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
        names.insert(entry.path());
    return names;
}

/// Seconds on a processor.
double CpuOf(const std::string& thread)
{
    double nanoseconds = 0;
    std::ifstream(thread + "/schedstat") >> nanoseconds;
    return nanoseconds * 1e-9;
}

} // namespace

Figure IdleSenderCpu(Stage& stage)
{
    constexpr std::chrono::seconds kWatch{5};
    stage.System();
    const std::set<std::string> before = Threads();
    Scene scene(stage, kSocks5); // one thread is the device's
    const std::string path = scene.MakeFile("plan", 1000);
    scene.SendEach(path, 1); // it has been at work
    std::this_thread::sleep_for(std::chrono::seconds(1));
    std::map<std::string, double> at;
    for (const std::string& thread : Threads())
        if (before.count(thread) == 0)
            at[thread] = CpuOf(thread);
    std::this_thread::sleep_for(kWatch);
    double least = 1; // the device's thread looks up once a second; the sender's does nothing
    for (const auto& [thread, cpu] : at)
        least = std::min(least, CpuOf(thread) - cpu);
    Figure figure{100 * least / Seconds(kWatch), 0, "threads: " + std::to_string(at.size())};
    figure.sound = at.size() == 2;
    return figure;
}

Figure HundredTransfers(Stage& stage)
{
    const auto run = [&stage](std::size_t count) {
        Scene scene(stage, kSocks5);
        const std::string path = scene.MakeFile("plan", 100'000);
        scene.SendEach(path, 1);
        for (std::size_t i = 0; i < count; ++i)
            scene.SendFile(path);
        std::vector<double> pauses;
        const std::vector<FileDevice::File> files = scene.Device().Await(count + 1);
        for (std::size_t i = 2; i < files.size(); ++i)
            pauses.push_back(Milliseconds(files[i].offered - files[i - 1].offered));
        return pauses;
    };
    const std::vector<double> few = run(25);
    const std::vector<double> many = run(100);
    const auto mean = [](const std::vector<double>& all) {
        double sum = 0;
        for (const double each : all)
            sum += each;
        return sum / static_cast<double>(all.size());
    };
    Figure figure{*std::max_element(many.begin(), many.end()), 0,
                  "each takes " + ShortNumber(mean(many)) + " ms, of 25 each " + ShortNumber(mean(few)) + " ms"};
    figure.sound = mean(many) < 2 * mean(few);
    return figure;
}
