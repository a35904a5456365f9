#include "VKmxpDriverExports.h"

#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>

/// A driver that delivers nothing: the subject of a message says, word by word, what its receiver does when it is asked,
/// "LATER" leaves the rest to the next query; the body says how sending comes out.
namespace {

using Reports = VKMessengerReportsMngrInterface;

class FakeDriver final : public VKProtocolDriverInterface
{
public:
    const char* GetName() override { return "FAKE"; }
    const char* GetVersion() override { return "1.0"; }
    const char* GetProtocolName() override { return "FAKE"; }
    const char* GetCarrierName() override { return "*"; }

    bool Configure(std::map<std::string, std::string>&) override
    {
        const std::string root = std::getenv("VKMXP_ROOT");
        char file[] = "FakeDriver";
        if (root.find("unconfigurable") == std::string::npos)
            return true;
        m_pobjLogger->WriteError("Error in getting the configuration object.", __LINE__, file);
        return false;
    }

    bool SendAMessage(VKMessageFile* file, ReportsStatus& status) override
    {
        if (file->strBody == "refuse") {
            file->SetFailureReason("Receiver is offline.");
            return false;
        }
        if (file->strBody == "wait") {
            file->SetStatusText("DEV OFFLINE");
            status = Reports::RS_DEVICE_OFFLINE;
            return true;
        }
        // With attachments, which end with "FILES" or "BREAK".
        status = file->strBody == "files" ? Reports::RS_PENDING : Reports::RS_SENT;
        file->SetCarrierReference(file->strJobID);
        return true;
    }

    bool Send2WayRespQuery(VKMessageFile* file, ReportsStatus& status) override
    {
        status = Reports::RS_FAILED;
        std::istringstream words(file->strSubject);
        std::string rest;
        for (std::string word; words >> word;) {
            if (word == "LATER") { // with the next query
                std::getline(words, rest);
                break;
            }
            Apply(*file, word);
        }
        file->strSubject = rest;
        return true;
    }

private:
    void Apply(VKMessageFile& file, const std::string& word)
    {
        if (word == "READ" || word == "RECEIVED") {
            file.SetDeliveryStatus("DELIVERED-" + word);
            PushBackMsgFile(&file, Reports::RS_DELIVERED, true, ": " + word);
        } else if (word == "CONFIRM") {
            file.AddReceivedResponse(word);
            PushBackMsgFile(&file, Reports::RS_CONFIRMED, false, "");
        } else if (word == "FILES") {
            PushBackMsgFile(&file, Reports::RS_SENT, false, "");
        } else if (word == "BREAK") {
            file.SetFailureReason("File transfer failed.");
            PushBackMsgFile(&file, Reports::RS_FAILED, false, "");
        } else if (file.AddReceivedResponse(word)) {
            const int last = static_cast<int>(file.vecReceivedResponses.size()) - 1;
            const bool open = file.GetResponseActionType(last) == VKMessageFile::kNonTerminalAction;
            PushBackMsgFile(&file, Reports::RS_REPLIED_WITH, open, "");
        } else {
            PushBackMsgFile(&file, Reports::RS_DELIVERED, false, "");
        }
    }
};

std::unique_ptr<FakeDriver> g_driver;

} // namespace

extern "C" VKProtocolDriverInterface* GetDriverInstance()
{
    if (!g_driver)
        g_driver = std::make_unique<FakeDriver>();
    return g_driver.get();
}

extern "C" void ReleaseDriverInstance(VKProtocolDriverInterface* driver)
{
    if (driver == g_driver.get())
        g_driver.reset();
}
