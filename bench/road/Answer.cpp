#include "Measurements.h"
#include "Stage.h"
#include "VKMXPCoreManager.h"
#include "VKMXPmEnvelope.h"
#include "VKMXPmSetMsgStatus.h"

#include <thread>

namespace {

constexpr int kWarmUp = 50;
constexpr int kSamples = 1000;
constexpr std::chrono::microseconds kRest{300};

/// Stands before the driver as the core manager's request handler: by the time that it notes, the driver has made the
/// entry in its cache.
class AnswerWatch : public VKMXPRequestHandlerIface
{
public:
    explicit AnswerWatch(Host& host) : m_host(host) { host.Manager().SetGeneralRequestHandler(this); }
    ~AnswerWatch() { m_host.Manager().SetGeneralRequestHandler(&m_host.Driver()); }
    AnswerWatch(const AnswerWatch&) = delete;
    AnswerWatch& operator=(const AnswerWatch&) = delete;

    void HandleRequest(const std::string& jid, const std::string& connectionId, const std::string& packetType,
                       VKMXPmBase* packet) override
    {
        m_host.Driver().HandleRequest(jid, connectionId, packetType, packet);
        inbox.Put(jid, std::string());
    }

    Inbox inbox;

private:
    Host& m_host;
};

std::string StatusEnvelope(const std::string& jobId)
{
    auto status = std::make_unique<VKMXPmSetMsgStatus>();
    status->m_strJobID = jobId;
    status->m_strStatus = "RECEIVED";
    status->m_bValid = true;
    VKMXPmEnvelope envelope;
    envelope.Add(status.release());
    return envelope.GenerateXML();
}

double TimeOne(Inbox& inbox, BareClient& device, const std::string& to, const std::string& bytes)
{
    const unsigned long next = inbox.Count() + 1;
    const auto start = Clock::now();
    device.Send(to, bytes);
    const double taken = Microseconds(inbox.Await(next) - start);
    std::this_thread::sleep_for(kRest);
    return taken;
}

/// The host must find the answer when it asks for it.
void CheckCached(Host& host, BenchMessage& message)
{
    VKMessageFile::ReportsStatus status = VKMessengerReportsMngrInterface::RS_UNCHANGED;
    host.Driver().Send2WayRespQuery(&message.file, status);
    if (status != VKMessengerReportsMngrInterface::RS_DELIVERED)
        throw std::runtime_error("an answer that was handled is not in the request cache");
}

} // namespace

Figure AnswerP50(Stage& stage)
{
    Host& host = stage.System();
    Inbox deviceInbox;
    Inbox bareInbox;
    Clients devices(stage);
    BareClient& device = devices.Add(accounts::Device(0), "mxp", [&](const std::string& from, const std::string& body) {
        deviceInbox.Put(from, body);
    });
    Clients bare(stage);
    BareClient& client = bare.Add(accounts::Bare(0), "bench",
                                  [&](const std::string& from, const std::string& body) { bareInbox.Put(from, body); });

    BenchMessage first = host.Message(0, 0);
    host.Send(first);
    deviceInbox.Await(1);
    const std::string server = deviceInbox.LastSender();
    client.OpenSession(accounts::Jid(accounts::Device(0)));

    AnswerWatch watch(host);
    std::vector<double> ours;
    std::vector<double> plain;
    for (int i = 0; i < kWarmUp + kSamples; ++i) {
        BenchMessage message = host.Message(0, 0);
        const std::string bytes = StatusEnvelope(message.file.strJobID);
        const double taken = TimeOne(watch.inbox, device, server, bytes);
        CheckCached(host, message);
        const double bareTaken = TimeOne(bareInbox, device, client.FullJid(), bytes);
        if (i >= kWarmUp) {
            ours.push_back(taken);
            plain.push_back(bareTaken);
        }
    }
    host.Disconnect(Host::Connection(0));
    return {Median(ours), Median(plain)};
}
