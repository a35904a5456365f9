#include "DeviceAnswer.h"

#include "Options.h"
#include "VKField.h"
#include "VKMXPmConfirmMsg.h"
#include "VKMXPmRejectMsg.h"
#include "VKMXPmSendMsgResponse.h"
#include "VKMXPmSetMsgStatus.h"
#include "VKstringXmlText.h"

namespace vk {

namespace {

using Kind = DeviceAnswer::Kind;

constexpr int kNoKind = -1;
constexpr CodeText<int> kWords[] = {
    {static_cast<int>(Kind::Received), "received"},
    {static_cast<int>(Kind::Read), "read"},
    {static_cast<int>(Kind::Confirm), "confirm"},
    {static_cast<int>(Kind::Reject), "reject"},
};

constexpr std::string_view kReply = "reply:";

DeviceAnswer ParseAnswer(std::string word)
{
    if (VKstringCleanXmlText(word) != 0)
        throw UsageError("--answer: '" + word + "' has characters that XML cannot carry");
    DeviceAnswer answer;
    answer.word = word;
    if (word.compare(0, kReply.size(), kReply) == 0) {
        const std::size_t colon = word.find(':', kReply.size());
        answer.kind = Kind::Reply;
        answer.code = word.substr(kReply.size(), colon - kReply.size());
        answer.text = colon == std::string::npos ? "" : word.substr(colon + 1);
        if (answer.code.empty() || answer.text.empty())
            throw UsageError("--answer: '" + word + "' must be reply:CODE:TEXT");
        return answer;
    }
    const int kind = CodeOfText(kWords, word, kNoKind);
    if (kind == kNoKind)
        throw UsageError("--answer: '" + word + "' is none of received, read, confirm, reject, reply:CODE:TEXT");
    answer.kind = static_cast<Kind>(kind);
    return answer;
}

std::unique_ptr<VKMXPmBase> Status(const std::string& jobId, const char* status)
{
    auto packet = std::make_unique<VKMXPmSetMsgStatus>();
    packet->m_strJobID = jobId;
    packet->m_strStatus = status;
    return packet;
}

template <class Packet>
std::unique_ptr<VKMXPmBase> Verdict(const std::string& jobId, const char* response)
{
    auto packet = std::make_unique<Packet>();
    packet->m_strJobID = jobId;
    packet->m_strResponse = response;
    return packet;
}

std::unique_ptr<VKMXPmBase> Reply(const std::string& jobId, const DeviceAnswer& answer)
{
    auto packet = std::make_unique<VKMXPmSendMsgResponse>();
    packet->m_strJobID = jobId;
    packet->m_strResponseCode = answer.code;
    packet->m_strResponseText = answer.text;
    return packet;
}

} // namespace

std::unique_ptr<VKMXPmBase> DeviceAnswer::MakePacket(const std::string& jobId) const
{
    std::unique_ptr<VKMXPmBase> packet;
    switch (kind) {
    case Kind::Received: packet = Status(jobId, "RECEIVED"); break;
    case Kind::Read: packet = Status(jobId, "READ"); break;
    case Kind::Confirm: packet = Verdict<VKMXPmConfirmMsg>(jobId, "CONFIRM"); break;
    case Kind::Reject: packet = Verdict<VKMXPmRejectMsg>(jobId, "REJECT"); break;
    case Kind::Reply: packet = Reply(jobId, *this); break;
    }
    packet->m_bValid = true;
    return packet;
}

std::vector<DeviceAnswer> ParseAnswers(std::string_view list)
{
    std::vector<DeviceAnswer> answers;
    if (list.empty())
        return answers;
    std::string word;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i] == '\\' && i + 1 < list.size() && list[i + 1] == ',') {
            word += list[++i];
        } else if (list[i] == ',') {
            answers.push_back(ParseAnswer(std::move(word)));
            word.clear();
        } else {
            word += list[i];
        }
    }
    answers.push_back(ParseAnswer(std::move(word)));
    return answers;
}

} // namespace vk
