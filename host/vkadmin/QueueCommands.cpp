#include "QueueCommands.h"

#include "AdminOutput.h"
#include "AdminRoot.h"
#include "RecordForm.h"
#include "VKDBexception.h"
#include "VKDBiMessageQueue.h"
#include "VKDatabase.h"
#include "VKMessageName.h"

#include <ctime>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>

namespace vk {

namespace {

constexpr const char* kColumns[] = {"id", "msg_name", "priority", "pin", "receiver_name", "create_time",
                                    "last_modify_time"};

/// What is shown of a message: the columns of its header.
ShownRecord Shown(const VK_MESSAGE_HEADER& header)
{
    QueueRow row;
    static_cast<VK_MESSAGE_HEADER&>(row) = header;
    static constexpr const char* kUnread[] = {"lock_time",       "last_lock_owner_svc_name", "msg_status",
                                              "msg_query_count", "msg_job_id",               "msg_protocol"};
    return ShownValues(kQueueTable.fields, {}, kUnread, row);
}

VKDBiMessageQueue& Queue(const Arguments& arguments)
{
    VKDatabase& database = UseDatabase(arguments);
    const auto number = static_cast<int>(arguments.Number("--queue", 1, std::numeric_limits<int>::max(), 0));
    VKDBiMessageQueue* const queue = database.getVKDBiMessageQueueObject(number);
    if (queue == nullptr)
        throw std::runtime_error("queue " + std::to_string(number) +
                                 " cannot be opened: " + database.getLastErrorString());
    return *queue;
}

/// A message with its body, freed at the end of a block.
struct Message
{
    Message() = default;
    ~Message() { EmptyMessageContent(&content); }
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    VK_MESSAGE_CONTENT content;
};

std::string ReadBody(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    if (!in || !(text << in.rdbuf()))
        throw InputError(path + ": cannot be read, or is empty");
    Json::Value json;
    Json::CharReaderBuilder builder;
    std::string error;
    std::istringstream body(text.str());
    if (!Json::parseFromStream(builder, body, &json, &error) || !json.isObject())
        throw InputError(path + ": is no JSON object");
    return text.str();
}

std::string NewName(const Arguments& arguments)
{
    MessageName name;
    name.protocol = arguments.Text("--protocol", "mxp");
    name.job = arguments.Text("--job");
    return name.Text();
}

} // namespace

int ListQueue(const Arguments& arguments)
{
    VKDBiMessageQueue& queue = Queue(arguments);
    const std::string pin = arguments.Text("--pin");
    if (!pin.empty())
        queue.SetFilterByPin("", pin);
    else if (arguments.Has("--status"))
        queue.SetFilter("", arguments.Text("--status") + ".", 0, 0);
    VK_MESSAGE_HEADER_LIST list;
    const auto empty = [](VK_MESSAGE_HEADER_LIST* headers) { EmptyMessageHeaderList(headers); };
    const std::unique_ptr<VK_MESSAGE_HEADER_LIST, decltype(empty)> guard(&list, empty);
    queue.Get(&list, true);
    std::vector<ShownRecord> shown;
    for (int i = 0; i < list.count; ++i)
        shown.push_back(Shown(list.list[i]));
    PrintTable(shown, kColumns, arguments.Has("--json"));
    return kExitOk;
}

int ShowQueued(const Arguments& arguments)
{
    const std::string name = arguments.Text("--name");
    Message message;
    if (!Queue(arguments).GetByName(name, &message.content, true, true))
        return Refused("there is no message '" + name + "'");
    ShownRecord shown = Shown(message.content.header);
    shown.emplace_back("body", std::string(message.content.body, message.content.length));
    PrintRecord(shown, arguments.Has("--json"));
    return kExitOk;
}

int AddToQueue(const Arguments& arguments)
{
    const std::string body = ReadBody(arguments.Text("--file"));
    VKDBiMessageQueue& queue = Queue(arguments);
    Message message;
    VK_MESSAGE_HEADER& header = message.content.header;
    QueueRow row;
    FillFromOptions(kQueueTable.fields, {}, arguments, row);
    header = row;
    SetFromText(header.msg_name, NewName(arguments), "--job");
    header.create_time = std::time(nullptr);
    AddMessageContent(&message.content, body);
    try {
        RequireMessageName(header.msg_name);
    } catch (const VKDBexception& error) {
        return Refused(error.GetMsg());
    }
    if (!queue.IsUniqueName(header.msg_name))
        return Refused(std::string("there is a message '") + header.msg_name + "' already");
    queue.Add(&message.content);
    PrintNewId(header.id, arguments.Has("--json"));
    return kExitOk;
}

int UnlockQueue(const Arguments& arguments)
{
    VKDBiMessageQueue& queue = Queue(arguments);
    std::vector<std::string> services;
    if (arguments.Has("--service")) {
        services.push_back(arguments.Text("--service"));
        queue.UnprocessMsgList(services[0]);
    } else {
        queue.GetLockedUpMsgsServiceNames(services);
        queue.UnprocessLockedUpMsgs(services);
    }
    Json::Value names(Json::arrayValue);
    std::string sentence = services.empty() ? "no service has held a message too long" : "given back what was held by:";
    for (const std::string& service : services) {
        names.append(service);
        sentence += " " + service;
    }
    PrintDone(sentence, {{"services", names}}, arguments.Has("--json"));
    return kExitOk;
}

int CleanQueue(const Arguments& arguments)
{
    constexpr int kMost = std::numeric_limits<int>::max();
    const auto keep = static_cast<int>(arguments.Number("--keep", 0, kMost, kMost));
    const auto days = static_cast<int>(arguments.Number("--days", 0, 36500, 36500));
    if (!arguments.Has("--keep") && !arguments.Has("--days"))
        throw UsageError("give --days, --keep or both");
    VKDBiMessageQueue& queue = Queue(arguments);
    const long before = queue.GetTotalRecordCount();
    queue.CleanupOldMsgs(keep, days);
    const long after = queue.GetTotalRecordCount();
    PrintDone(std::to_string(before - after) + " deleted, " + std::to_string(after) + " left",
              {{"deleted", Json::Int64(before - after)}, {"left", Json::Int64(after)}}, arguments.Has("--json"));
    return kExitOk;
}

} // namespace vk
