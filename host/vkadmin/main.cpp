#include "DepartmentNoun.h"
#include "InitCommand.h"
#include "JobStatusCommand.h"
#include "PacketCommands.h"
#include "QueueCommands.h"
#include "ReceiverNoun.h"
#include "SessionCommands.h"

namespace {

using vk::Need;

constexpr vk::Option kProgramOptions[] = {
    {"--root", "DIR", "The installation root.", Need::Required},
    {"--json", nullptr, "JSON, one object a line."},
};

constexpr vk::Option kSessionAdd[] = {
    {"--user-id", "N", "The receiver's id.", Need::Required},
    {"--jid", "JID", "The full JID with which its device is logged in.", Need::Required},
    {"--user-name", "NAME", "A name for the list; the JID's user when not given."},
};
constexpr vk::Option kSessionRemove[] = {{"--jid", "JID", "The JID of the session.", Need::Required}};

constexpr vk::Option kReceiverAdd[] = {
    {"--name", "NAME", "Its name, unique.", Need::Required},
    {"--pin", "PIN", "Its address on the carrier; the bare JID of a mobile device.", Need::Required},
    {"--type", "TYPE", "What kind of device it is; alpha when not given.", Need::Optional, "alpha|numeric|two-way|fax"},
    {"--description", "TEXT", "Free text."},
    {"--email", "ADDRESS", "Its mail address."},
    {"--department-id", "N", "The department that it belongs to."},
    {"--carrier-id", "N", "Its carrier."},
};
constexpr vk::Option kDepartmentAdd[] = {
    {"--name", "NAME", "Its name, unique.", Need::Required},
    {"--description", "TEXT", "Free text."},
    {"--max-receivers", "N", "How many receivers it may have."},
};
constexpr vk::Option kShow[] = {
    {"--id", "N", "The one with this id."},
    {"--name", "NAME", "The one with this name, letters of either case."},
};

constexpr vk::Option kQueue = {"--queue", "N", "The queue's number.", Need::Required};
constexpr vk::Option kQueueList[] = {
    kQueue,
    {"--pin", "PIN", "Those for this address; \"*\" stands for any text."},
    {"--status", "LETTER", "Those in this status.", Need::Optional, "M|D|E|F|Q|R|W"},
};
constexpr vk::Option kQueueShow[] = {kQueue, {"--name", "NAME", "The message's name.", Need::Required}};
constexpr vk::Option kQueueAdd[] = {
    kQueue,
    {"--file", "FILE", "The message as JSON, as vkmessenger takes it.", Need::Required},
    {"--job", "ID", "Its job, unique in the queue.", Need::Required},
    {"--protocol", "NAME", "Its protocol; mxp when not given."},
    {"--priority", "N", "1 goes first; 3 when not given."},
    {"--pin", "PIN", "The address that it is for."},
    {"--receiver-name", "NAME", "Who it is for."},
    {"--sender-name", "NAME", "Who it is from."},
    {"--expiry-time", "SECONDS", "When it expires, seconds since 1970."},
};
constexpr vk::Option kQueueUnlock[] = {
    kQueue, {"--service", "NAME", "All that this service holds; it must not be running."}};
constexpr vk::Option kQueueClean[] = {
    kQueue,
    {"--days", "N", "Delete what has not changed for so many days."},
    {"--keep", "N", "Delete the oldest until so many are left."},
};

constexpr vk::Operand kJobStatusShow[] = {{"JOB", "The job's id."}};

constexpr vk::Operand kPacketParse[] = {{"FILE", "The file with the envelope; \"-\" is standard input."}};
constexpr vk::Operand kPacketMakeFields[] = {
    {"NAME", "The packet's element, as docs/protocol.md has them."},
    {"KEY=VALUE", "A field: the elements and the attribute that lead to it, joined by points. A list takes several: "
                  "recipients.name=Alice recipients.name=Bob; one of records has numbers from 1: "
                  "attachments.file.1.id=a attachments.file.1.text=/tmp/a. The contents of an element that has "
                  "attributes are \"text\". Keys of a response's result begin with \"result.\".", Need::Optional},
};
constexpr vk::Option kPacketMake[] = {
    {"--seq", "N", "The sequence number; 0 when not given."},
    {"--response", "CODE", "Makes a response with this code; 1 is success."},
    {"--err-code", "N", "The response's error code; 0 when not given."},
    {"--message", "TEXT", "The response's message."},
    {"--result-type", "WORD", "What the response's result is; xml when it has any fields, otherwise none.", Need::Optional,
     "none|text|xml|json|base64|cdata"},
};

using Receivers = vk::EntityVerbs<vk::ReceiverNoun>;
using Departments = vk::EntityVerbs<vk::DepartmentNoun>;

constexpr vk::Command kCommands[] = {
    {"init", "Makes a new root: its directories and the files \"dir\", \"datasource\" (embedded files), \"version\" and "
             "\"vklogs.ini\". An existing one is not touched.", {}, &vk::RunInit},
    {"session add", "Enters a device as logged in, as a gateway does.", kSessionAdd, &vk::AddSession},
    {"session list", "Lists the devices that are logged in.", {}, &vk::ListSessions},
    {"session remove", "Takes a device out.", kSessionRemove, &vk::RemoveSession},
    {"receiver add", "Adds a receiver and prints its id.", kReceiverAdd, &Receivers::Add},
    {"receiver show", "Shows all of one receiver but its secrets.", kShow, &Receivers::Show},
    {"receiver list", "Lists all receivers by name.", {}, &Receivers::List},
    {"department add", "Adds a department and prints its id.", kDepartmentAdd, &Departments::Add},
    {"department show", "Shows all of one department.", kShow, &Departments::Show},
    {"queue list", "Lists the messages of a queue.", kQueueList, &vk::ListQueue},
    {"queue show", "Shows all of one message and its body.", kQueueShow, &vk::ShowQueued},
    {"queue add", "Adds a message and prints its id.", kQueueAdd, &vk::AddToQueue},
    {"queue unlock", "Gives back what services have held too long, or all that one holds.", kQueueUnlock,
     &vk::UnlockQueue},
    {"queue clean", "Deletes old messages in the statuses M, Q and R.", kQueueClean, &vk::CleanQueue},
    {"department list", "Lists all departments by name.", {}, &Departments::List},
    {"job-status show", "Shows the last known state of a job.", {}, &vk::ShowJobStatus, kJobStatusShow},
    {"packet parse", "Shows what an envelope of the protocol holds, or where and why it is refused. Needs no root.", {},
     &vk::ParsePacket, kPacketParse, vk::Scope::Alone},
    {"packet make", "Writes an envelope with one packet, as the side that sends it has to. Needs no root.", kPacketMake,
     &vk::MakePacket, kPacketMakeFields, vk::Scope::Alone},
};

constexpr vk::ManualSection kSections[] = {
    {"EXIT STATUS",
     "0  done\n"
     "1  the record or the packet is refused or is not there\n"
     "2  the call or the root is wrong; nothing was done\n"
     "3  the database cannot be opened or used"},
    {"FILES",
     "DIR/config/dir         where the queues are\n"
     "DIR/config/datasource  which database it is\n"
     "DIR/config/vklogs.ini  what is logged, and where\n"
     "DIR/config/*.sdb       the embedded database files\n"
     "DIR/temp/xmpp_user_sessions.sdb  who is logged in\n"
     "report_msg_status.sdb  the jobs' states; in the report directory that DIR/config/dir names"},
    {"EXAMPLE",
     "vkadmin --root /srv/paging init\n"
     "vkadmin --root /srv/paging receiver add --name Alice --pin alice@example.org --type two-way\n"
     "vkadmin --root /srv/paging session add --user-id 1 --jid alice@example.org/mxp"},
};

constexpr vk::Program kProgram = {
    "vkadmin",
    "the administrator's tool",
    "Makes an installation root and looks after what is stored in it.",
    kProgramOptions,
    kCommands,
    kSections,
};

} // namespace

int main(int argc, char** argv) { return vk::RunProgram(kProgram, argc, argv); }
