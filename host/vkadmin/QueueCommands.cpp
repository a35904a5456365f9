#include "QueueCommands.h"

#include "AdminOutput.h"
#include "AdminRoot.h"
#include "RecordForm.h"
#include "VKDBexception.h"
#include "VKDBiMessageQueue.h"
#include "VKDatabase.h"
#include "VKJson.h"
#include "VKMessageName.h"
#include "VKMsgQueueFileOperations.h"
#include "VKRecordText.h"

#include <ctime>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <sstream>
#include <sys/stat.h>

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
    if (!ParseJsonObject(text.str(), json))
        throw InputError(path + ": is no JSON object");
    return text.str();
}

/// What a message's row takes from its body when there is nothing else to take it from. A body that is no JSON object, or
/// has a text that is too long, gives nothing.
void FillFromBody(VK_MESSAGE_HEADER& header, const VK_MESSAGE_CONTENT& content)
{
    Json::Value body;
    ParseJsonObject({content.body ? content.body : "", content.length}, body);
    const auto take = [&](auto& member, const char* key) {
        const std::string value = JsonText(body, key);
        if (value.size() < sizeof member && value.find('\0') == std::string::npos)
            SetText(member, value, key);
    };
    take(header.pin, "receiver_pin");
    take(header.carrier_name, "carrier_name");
    take(header.sender_name, "sender");
}

/// The message files of a queue that have no row, oldest first.
std::vector<std::filesystem::directory_entry> FilesWithoutRow(VKDBiMessageQueue& queue)
{
    namespace fs = std::filesystem;
    std::multimap<fs::file_time_type, fs::directory_entry> byAge;
    for (const fs::directory_entry& entry : fs::directory_iterator(queue.GetQueueName())) {
        const std::string name = entry.path().filename();
        if (entry.is_regular_file() && IsMessageName(name) && HasStatusLetter(name) && queue.IsUniqueName(name))
            byAge.emplace(entry.last_write_time(), entry);
    }
    std::vector<fs::directory_entry> files;
    for (const auto& one : byAge)
        files.push_back(one.second);
    return files;
}

/// Adds the message that a file holds. What was being sent is nobody's now: it is sent again, or asked about again.
void Recover(VKDBiMessageQueue& queue, const std::filesystem::directory_entry& file)
{
    const std::string name = file.path().filename();
    Message message;
    struct stat facts{};
    if (stat(file.path().c_str(), &facts) != 0 ||
        !VKMsgQueueFileOperations(0, queue.GetQueueName()).LoadMsgFileContent(name, &message.content))
        throw VKDBexception(DbError::General, __FILE__, __LINE__, "the file cannot be read");
    VK_MESSAGE_HEADER& header = message.content.header;
    SetText(header.msg_name, name, "msg_name");
    header.create_time = facts.st_mtime;
    FillFromBody(header, message.content);
    queue.Add(&message.content);
    const std::string letter = MessageName::Parse(name).queryCount > 0 ? "Q." : "M.";
    if (name[0] == 'R' && queue.IsUniqueName(letter + name.substr(2)))
        queue.Morph(name, letter, false, 0);
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

int RecoverQueue(const Arguments& arguments)
{
    VKDBiMessageQueue& queue = Queue(arguments);
    if (!std::filesystem::is_directory(queue.GetQueueName()))
        return Refused("the messages of this queue are rows of a server and have no files: restore the server's backup");
    const bool dry = arguments.Has("--dry-run");
    Json::Value names(Json::arrayValue);
    std::string refused;
    for (const std::filesystem::directory_entry& file : FilesWithoutRow(queue)) {
        try {
            if (!dry)
                Recover(queue, file);
            names.append(file.path().filename().string());
        } catch (const VKDBexception& error) { // the others are not to wait for it
            refused += (refused.empty() ? "" : "; ") + file.path().string() + ": " + error.GetMsg();
        }
    }
    std::string sentence = std::to_string(names.size()) + (dry ? " would be recovered" : " recovered");
    for (const Json::Value& name : names)
        sentence += "\n" + name.asString();
    PrintDone(sentence, {{"recovered", names}}, arguments.Has("--json"));
    return refused.empty() ? kExitOk : Refused(refused);
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
