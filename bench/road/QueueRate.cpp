#include "Arrivals.h"
#include "Measurements.h"
#include "Stage.h"
#include "VKDatabase.h"
#include "VKDBiMessageQueue.h"
#include "VKRecordText.h"

#include <json/json.h>

#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

constexpr int kMessages = 2000;
constexpr int kQueue = 1;
constexpr int kArchive = 4;

std::string BodyOf(const VKMessageFile& file)
{
    Json::Value body;
    body["job_id"] = file.strJobID;
    body["sender"] = file.strSender;
    body["subject"] = file.strSubject;
    body["body"] = file.strBody;
    body["receiver_pin"] = file.strReceiverPin;
    body["receiver_id"] = Json::UInt64(file.ulReceiverID);
    body["carrier_name"] = file.strCarrierName;
    body["server"] = file.strServer;
    body["port"] = file.iPort;
    body["domain"] = file.strDomain;
    body["user_id"] = file.strUserID;
    body["password"] = file.strPassword;
    body["resource"] = file.strResource;
    for (const auto& choice : file.vecResponseChoices)
        body["response_choices"].append([&] {
            Json::Value json;
            json["text"] = choice.strText;
            json["type"] = choice.iType == VKMessageFile::kNonTerminalAction ? "non-terminal" : "terminal";
            return json;
        }());
    return Json::writeString(Json::StreamWriterBuilder(), body);
}

VKDBiMessageQueue& Queue(int number)
{
    VKDatabase* const database = VKDatabase::getVKMultiThreadedDatabase(nullptr, true);
    VKDBiMessageQueue* const queue = database->getVKDBiMessageQueueObject(number);
    if (queue == nullptr)
        throw std::runtime_error("no queue: " + database->getLastErrorString());
    return *queue;
}

void Fill(Host& host)
{
    VKDBiMessageQueue& queue = Queue(kQueue);
    for (int i = 0; i < kMessages; ++i) {
        const BenchMessage message = host.Message(1, i % accounts::kDevices);
        VK_MESSAGE_CONTENT content;
        vk::SetText(content.header.msg_name, "M.0." + message.file.strJobID + ".mxp", "msg_name");
        vk::SetText(content.header.pin, message.file.strReceiverPin, "pin");
        content.header.create_time = std::time(nullptr);
        AddMessageContent(&content, BodyOf(message.file));
        queue.Add(&content);
        EmptyMessageContent(&content);
    }
}

/// vkmessenger on the queue until it is empty; ended with the object.
class Messenger
{
public:
    explicit Messenger(const std::string& root)
    {
        m_pid = fork();
        if (m_pid < 0)
            throw std::system_error(errno, std::generic_category(), "vkmessenger");
        if (m_pid != 0)
            return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        execl(VK_BUILD_DIR "/vkmessenger", "vkmessenger", "send", "--root", root.c_str(), "--queue", "1", "--log-level",
              "warn", nullptr);
        _exit(127);
    }
    ~Messenger() { End(); }
    Messenger(const Messenger&) = delete;
    Messenger& operator=(const Messenger&) = delete;

    int End()
    {
        int status = 0;
        if (m_pid > 0)
            waitpid(m_pid, &status, 0);
        m_pid = -1;
        return status;
    }

private:
    pid_t m_pid = -1;
};

} // namespace

Figure QueueMessagesPerSecond(Stage& stage)
{
    Host& host = stage.System();
    Arrivals arrivals;
    Clients devices(stage);
    for (int i = 0; i < accounts::kDevices; ++i)
        devices.Add(accounts::Device(i), "mxp",
                    [&arrivals, i](const std::string&, const std::string& body) { arrivals.Put(i, body); });
    Clients bare(stage);
    BareClient& client = bare.Add(accounts::Bare(0), "bench", {});
    Fill(host);

    auto start = Clock::now();
    Messenger messenger(host.Root());
    const double ours = Seconds(arrivals.Await(kMessages) - start);
    const int status = messenger.End();
    const double archived = Seconds(Clock::now() - start);
    if (status != 0)
        throw std::runtime_error("vkmessenger ended with status " + std::to_string(status));

    const auto sent = arrivals.Envelopes();
    arrivals.Clear();
    start = Clock::now();
    for (const auto& [device, body] : sent)
        client.Send(accounts::Jid(accounts::Device(device)), body);
    Figure figure{kMessages / ours, kMessages / Seconds(arrivals.Await(kMessages) - start)};
    const long kept = Queue(kArchive).GetTotalRecordCount();
    figure.sound = kept == kMessages && Queue(kQueue).GetTotalRecordCount() == 0;
    figure.note = "with the start of the process; " + std::to_string(kept) + " archived, all of it in " +
                  ShortNumber(archived) + " s";
    return figure;
}
