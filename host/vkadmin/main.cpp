#include "AttributeCommands.h"
#include "ClientCommands.h"
#include "DatabaseCommands.h"
#include "DepartmentNoun.h"
#include "GatewayUserCommands.h"
#include "InitCommand.h"
#include "JobStatusCommand.h"
#include "MessageCommands.h"
#include "PacketCommands.h"
#include "PushCommand.h"
#include "QueueCommands.h"
#include "ReceiverCommands.h"
#include "ReceiverNoun.h"
#include "ReceiverOptions.h"
#include "ReceiverTransfer.h"
#include "SessionCommands.h"
#include "SettingsCommands.h"

namespace {

using vk::Need;

constexpr vk::Option kProgramOptions[] = {
    {"--root", "DIR", "The installation root.", Need::Required},
    {"--json", nullptr, "JSON, one object a line."},
};

constexpr vk::Option kInit[] = {
    {"--dsn", "NAME", "The records go to the relational server of this ODBC data source, not to files."},
    {"--db-user", "NAME", "Who logs in there."},
    {"--db-password-file", "FILE", "A file whose first line is the password."},
};

constexpr vk::Option kSessionAdd[] = {
    {"--user-id", "N", "The receiver's id.", Need::Required},
    {"--jid", "JID", "The full JID with which its device is logged in.", Need::Required},
    {"--user-name", "NAME", "A name for the list; the JID's user when not given."},
};
constexpr vk::Option kSessionRemove[] = {{"--jid", "JID", "The JID of the session.", Need::Required}};

constexpr vk::Option kDepartmentAdd[] = {
    {"--name", "NAME", "Its name, unique.", Need::Required},
    {"--description", "TEXT", "Free text."},
    {"--max-receivers", "N", "How many receivers it may have."},
};
constexpr vk::Option kDepartmentModify[] = {
    {"--id", "N", "The one with this id."},
    {"--name", "NAME", "The one with this name, letters of either case."},
    {"--new-name", "NAME", "Its new name."},
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
constexpr vk::Option kQueueRecover[] = {kQueue, {"--dry-run", nullptr, "Only tell which they are."}};
constexpr vk::Option kQueueClean[] = {
    kQueue,
    {"--days", "N", "Delete what has not changed for so many days."},
    {"--keep", "N", "Delete the oldest until so many are left."},
};

constexpr vk::Option kPageSize = {"--page-size", "N", "So many at a time; all when not given."};
constexpr vk::Option kPage = {"--page", "N", "Which page of them; 1 when not given."};
constexpr vk::Option kDescending = {"--descending", nullptr, "The other way round."};
constexpr const char* kTrueFalse = "true|false";
constexpr const char* kGatewayUserTypes = "None|Emergency|MXPCarrier|Normal|XmppGWUser";

constexpr vk::Option kGatewayUserList[] = {
    {"--name", "TEXT", "Those whose name begins with this."},
    {"--vk-user-id", "N", "Those of this user of the server."},
    {"--all", nullptr, "Also the hidden ones."},
    {"--sort", "FIELD", "What to sort by; name when not given.", Need::Optional, "type|user-id|name|enabled|owner"},
    kDescending, kPageSize, kPage,
};
constexpr vk::Option kGatewayUserShow[] = {
    {"--id", "N", "The one with this id."},
    {"--user-id", "LOGIN", "The one with this login, letters of either case."},
};
constexpr vk::Option kGatewayUserFields[] = {
    {"--name", "NAME", "Its name; that of a new one is its login when not given."},
    {"--type", "TYPE", "Whose account it is; that of a new one is Normal when not given.", Need::Optional,
     kGatewayUserTypes},
    {"--nick-name", "NAME", "Its nick name."},
    {"--resource", "NAME", "Its XMPP resource."},
    {"--ip", "ADDRESS", "From where it may log in."},
    {"--vk-user-id", "N", "The user of the server who owns it."},
    {"--enabled", "BOOL", "Whether it may log in; a new one may when not given.", Need::Optional, kTrueFalse},
    {"--enable-readonly", "BOOL", "Whether it may only read.", Need::Optional, kTrueFalse},
    {"--enable-hidden", "BOOL", "Whether lists leave it out.", Need::Optional, kTrueFalse},
    {"--enable-roster", "BOOL", "Whether it has a roster.", Need::Optional, kTrueFalse},
    {"--enable-multi-login", "BOOL", "Whether it may log in more than once.", Need::Optional, kTrueFalse},
};
constexpr auto kGatewayUserAdd = vk::Joined(
    {
        {"--user-id", "LOGIN", "Its login, unique.", Need::Required},
        {"--password-file", "FILE", "Its password, the first line of a file; \"-\" is standard input.", Need::Required},
    },
    kGatewayUserFields);
constexpr auto kGatewayUserModify = vk::Joined(
    {
        {"--id", "N", "The one with this id.", Need::Required},
        {"--user-id", "LOGIN", "Its new login, unique."},
        {"--password-file", "FILE", "Its new password, the first line of a file; \"-\" is standard input."},
    },
    kGatewayUserFields);

constexpr vk::Option kClientId = {"--id", "N", "The client's id.", Need::Required};
constexpr vk::Option kOneClient[] = {kClientId};
constexpr vk::Option kClientList[] = {
    {"--name", "TEXT", "Those whose name begins with this."},
    {"--from", "SECONDS", "Those enrolled since then, seconds since 1970."},
    {"--to", "SECONDS", "Those enrolled until then."},
    kDescending, kPageSize, kPage,
};
constexpr vk::Option kClientShow[] = {
    {"--id", "N", "The one with this id."},
    {"--name", "NAME", "The one with this name."},
};
constexpr vk::Option kClientAuthorize[] = {kClientId, {"--revoke", nullptr, "Takes the authorization back."}};
constexpr vk::Option kClientMode[] = {
    kClientId, {"--mode", "MODE", "What it may do from now on.", Need::Required, "Basic|Advanced"}};
constexpr vk::Operand kMessagesBuild[] = {{"FILE", "The constants file: a C header, each text a line \"#define NAME NUMBER "
                                                   "/* text */\"; DIR/config/message_constants.h is one."}};

constexpr vk::Operand kSettingsShow[] = {{"KEY", "Those alone; all when not given.", Need::Optional}};
constexpr vk::Operand kSettingsSet[] = {
    {"KEY", "The elements and the attribute that lead to the value, joined by points: server_port, "
            "apns2_notification.topic, templates.greetings-msg.enable. \"show\" lists them."},
    {"VALUE", "Switches are true or false, addresses have commas between them, server-to-server profiles are a JSON "
              "list. Not for a secret, unless \"\" is to empty it.", Need::Optional},
};
constexpr vk::Option kSettingsFile[] = {
    {"--file", "FILE", "The value stands in this file, a secret in its first line; \"-\" is standard input."}};

constexpr vk::Operand kPushTest[] = {
    {"SERVICE", "apns, apns2, gcms or fcm."},
    {"TOKEN", "The device's token, or PROFILE@TOKEN, as the message files have it."},
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

constexpr vk::Option kSchema[] = {
    {"--dialect", "NAME", "What the server speaks.", Need::Required, "tsql|postgresql"}};
constexpr vk::Option kConvert[] = {
    {"--from", "ROOT", "The root whose records are copied; it is only read.", Need::Required},
    {"--to", "ROOT", "The root that gets them.", Need::Required},
};

using Receivers = vk::EntityVerbs<vk::ReceiverNoun>;
using Departments = vk::EntityVerbs<vk::DepartmentNoun>;

constexpr vk::Command kCommands[] = {
    {"init", "Makes a new root: its directories, the files \"dir\", \"datasource\" (embedded files), \"version\" and "
             "\"vklogs.ini\", and the message catalogue. An existing one is not touched.", kInit, &vk::RunInit},
    {"session add", "Enters a device as logged in, as a gateway does.", kSessionAdd, &vk::AddSession},
    {"session list", "Lists the devices that are logged in.", {}, &vk::ListSessions},
    {"session remove", "Takes a device out.", kSessionRemove, &vk::RemoveSession},
    {"receiver add", "Adds a receiver and prints its id.", vk::kReceiverAdd.rows, &Receivers::Add},
    {"receiver modify", "Changes what is given of a receiver.", vk::kReceiverModify.rows, &Receivers::Modify},
    {"receiver delete", "Deletes a receiver with all that belongs to it.", kShow, &Receivers::Delete},
    {"receiver show", "Shows all of one receiver but its secrets.", kShow, &Receivers::Show},
    {"receiver list", "Lists receivers by name.", vk::kReceiverFilter, &Receivers::List},
    {"receiver status", "Shows whether a receiver is available and when it was not, or changes it.",
     vk::kReceiverStatus, &vk::ReceiverStatus},
    {"receiver guest-departments", "Shows in which departments a receiver is seen beside its own, after changing them.",
     vk::kReceiverGuests, &vk::ReceiverGuestDepartments},
    {"receiver attributes", "Shows a receiver's values of attributes, after changing them.", vk::kReceiverAttributes,
     &vk::ReceiverAttributes},
    {"receiver export", "Writes receivers as CSV (RFC 4180), without their secrets.", vk::kReceiverFilter,
     &vk::ExportReceivers, vk::kReceiverCsvOut},
    {"receiver import", "Adds the receivers of a CSV file, all or none. Its first line names the columns, those of "
                        "\"export\"; name and pin must be there, ids are given anew. Rows that cannot be stored are "
                        "listed with their lines and why.",
     vk::kReceiverImport, &vk::ImportReceivers, vk::kReceiverCsvIn},
    {"attribute add", "Defines an attribute for receivers and prints its id.", vk::kAttributeAdd.rows,
     &vk::AddAttribute},
    {"attribute modify", "Changes what is given of an attribute.", vk::kAttributeModify.rows, &vk::ModifyAttribute},
    {"attribute delete", "Deletes an attribute of which no receiver has a value.", vk::kAttributeDelete,
     &vk::DeleteAttribute},
    {"attribute list", "Lists the attributes in their order.", {}, &vk::ListAttributes},
    {"department add", "Adds a department and prints its id.", kDepartmentAdd, &Departments::Add},
    {"department modify", "Changes what is given of a department.", kDepartmentModify, &Departments::Modify},
    {"department delete", "Deletes a department to which no receiver belongs.", kShow, &Departments::Delete},
    {"department show", "Shows all of one department.", kShow, &Departments::Show},
    {"queue list", "Lists the messages of a queue.", kQueueList, &vk::ListQueue},
    {"queue show", "Shows all of one message and its body.", kQueueShow, &vk::ShowQueued},
    {"queue add", "Adds a message and prints its id.", kQueueAdd, &vk::AddToQueue},
    {"queue unlock", "Gives back what services have held too long, or all that one holds.", kQueueUnlock,
     &vk::UnlockQueue},
    {"queue recover", "Takes up the message files that have no row, when a queue's database was lost. No service may be "
                      "using the queue.", kQueueRecover, &vk::RecoverQueue},
    {"queue clean", "Deletes old messages in the statuses M, Q and R.", kQueueClean, &vk::CleanQueue},
    {"department list", "Lists all departments by name.", {}, &Departments::List},
    {"gateway-user list", "Lists the accounts of the XMPP gateway.", kGatewayUserList, &vk::ListGatewayUsers},
    {"gateway-user show", "Shows all of one account but its secrets.", kGatewayUserShow, &vk::ShowGatewayUser},
    {"gateway-user add", "Adds an account and prints its id.", kGatewayUserAdd.rows, &vk::AddGatewayUser},
    {"gateway-user modify", "Changes what is given of an account.", kGatewayUserModify.rows, &vk::ModifyGatewayUser},
    {"gateway-user delete", "Deletes an account; the system makes its own ones again.", kGatewayUserShow,
     &vk::DeleteGatewayUser},
    {"gateway-user enable", "Lets an account log in.", kGatewayUserShow, &vk::EnableGatewayUser},
    {"gateway-user disable", "Lets an account no longer log in.", kGatewayUserShow, &vk::DisableGatewayUser},
    {"client list", "Lists the enrolled mobile clients by the time of enrolment.", kClientList, &vk::ListClients},
    {"client show", "Shows all of one client but its key.", kClientShow, &vk::ShowClient},
    {"client delete", "Deletes a client; it has to enrol anew.", kOneClient, &vk::DeleteClient},
    {"client authorize", "Authorizes a client.", kClientAuthorize, &vk::AuthorizeClient},
    {"client mode", "Sets what a client may do.", kClientMode, &vk::SetClientMode},
    {"client suspend", "Suspends a client.", kOneClient, &vk::SuspendClient},
    {"client resume", "Ends a suspension.", kOneClient, &vk::ResumeClient},
    {"schema", "Prints the statements that make all tables in an empty relational database. Needs no root.", kSchema,
     &vk::PrintSchema, {}, vk::Scope::Alone},
    {"convert", "Copies all records of one root into another, ids kept: from files to a server, back, or to others of "
                "their kind. What belongs together is copied whole or not at all; records that are there already, as "
                "they are, are left, so that it may be run again. Messages in queues are not copied.",
     kConvert, &vk::ConvertRoot, {}, vk::Scope::Alone},
    {"job-status show", "Shows the last known state of a job.", {}, &vk::ShowJobStatus, kJobStatusShow},
    {"messages build", "Makes the catalogue of the texts that explain a refused record anew, all or nothing.", {},
     &vk::BuildMessages, kMessagesBuild},
    {"settings mxp show", "Shows the settings of the MXP manager, those of push among them; \"***\" stands for a "
                          "secret.", {}, &vk::ShowMxpSettings, kSettingsShow},
    {"settings mxp set", "Sets one of them.", kSettingsFile, &vk::SetMxpSetting, kSettingsSet},
    {"settings gateway show", "Shows the settings of the XMPP gateway.", {}, &vk::ShowGatewaySettings, kSettingsShow},
    {"settings gateway set", "Sets one of them.", kSettingsFile, &vk::SetGatewaySetting, kSettingsSet},
    {"push test", "Sends one notification, with a text that says it is a test, and tells what the service answered. "
                  "Its settings are those of \"settings mxp\"; what was done goes to DIR/logs/vkadmin.log.", {},
     &vk::TestPush, kPushTest},
    {"packet parse", "Shows what an envelope of the protocol holds, or where and why it is refused. Needs no root.", {},
     &vk::ParsePacket, kPacketParse, vk::Scope::Alone},
    {"packet make", "Writes an envelope with one packet, as the side that sends it has to. Needs no root.", kPacketMake,
     &vk::MakePacket, kPacketMakeFields, vk::Scope::Alone},
};

constexpr vk::ManualSection kSections[] = {
    {"EXIT STATUS",
     "0  done\n"
     "1  the record, the packet or the notification is refused, or is not there\n"
     "2  the call or the root is wrong; nothing was done\n"
     "3  the database cannot be opened or used"},
    {"FILES",
     "DIR/config/dir         where the queues are\n"
     "DIR/config/datasource  which database it is\n"
     "DIR/config/vklogs.ini  what is logged, and where\n"
     "DIR/config/mxp_config.xml          the settings of the MXP manager and of push\n"
     "DIR/config/xmppgateway_config.xml  the settings of the XMPP gateway\n"
     "DIR/logs/vkadmin.log   what \"push test\" did\n"
     "DIR/config/*.sdb       the embedded database files\n"
     "DIR/config/messages.sdb  the message catalogue, made from message_constants.h beside it\n"
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
