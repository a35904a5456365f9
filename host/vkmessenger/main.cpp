#include "SendCommand.h"

namespace {

constexpr vk::Option kSendOptions[] = {
    {"--root", "DIR", "The installation root, with config/, temp/ and logs/ in it.", vk::Need::Required},
    {"--message", "FILE", "A message file; may be given several times. They are sent in this order. Either this or "
                          "--queue must be there.",
     vk::Need::Any},
    {"--queue", "N", "Sends what is ready in this message queue, in the order of priority and age."},
    {"--follow", nullptr, "Goes on with the queue until SIGTERM or SIGINT; otherwise it ends when nothing is ready and "
                          "the open answers are there or have been waited for."},
    {"--service", "NAME", "Who the queue's messages belong to while they are sent; vkmessenger when not given. Services "
                          "that run at the same time need different names."},
    {"--wait", "SECONDS", "How long to wait for answers; 30 when not given. The program ends as soon as every message is "
                          "final. With 0 it ends when the last message is handed over, and what has not left by then "
                          "is lost."},
    {"--settle", "MS", "A message is sent again after a crash unless its device has reported it or so much time has "
                       "passed since it was handed over; 2000 when not given."},
    {"--answer-limit", "SECONDS", "How long a two-way message of the queue waits for its answer; a day when not given."},
    {"--expire-after", "SECONDS", "When a message of the queue expires that says nothing of it itself; a day when not "
                                  "given."},
    {"--tries", "N", "How often the sending of a message of the queue is tried; 3 when not given."},
    {"--retry-after", "SECONDS", "The time between two tries; 10 when not given."},
    {"--query-interval", "SECONDS", "How often the row of an open two-way message is renewed, from 1 to 600; 60 when not "
                                    "given."},
    {"--poll", "MS", "How often the queue is looked at while nothing is ready, from 10 to 60000; 200 when not given."},
    {"--json", nullptr, "One JSON object a line for each thing that happens."},
    {"--driver", "PATH", "The driver's library; otherwise libvkmxp.so beside this program or in ../lib."},
    {"--log-level", "LEVEL", "What goes to DIR/logs/vkmessenger.log; info when not given.", vk::Need::Optional,
     "trace|debug|info|warn|error|critical|fatal"},
};

constexpr vk::Command kCommands[] = {
    {"send", "Hands each message file to the driver and shows what becomes of it.", kSendOptions, &vk::RunSend},
};

constexpr vk::ManualSection kSections[] = {
    {"MESSAGE FILE",
     "One JSON object. Texts: job_id, sender, fallback_sender, subject, body, receiver_pin, carrier_name, server, domain, "
     "user_id, password, resource, push_device_token, push_service_name, custom_parameters. Whole numbers: receiver_id, "
     "port, dispatch_at (seconds since the epoch), severity, expiration, seconds_to_live. True or false: confidential, "
     "queue_when_offline, two_way, push_enabled. attachments is an array of paths; response_choices is an array of "
     "objects {\"text\": ..., \"type\": \"terminal\" or \"non-terminal\"}. job_id and receiver_pin must be there. "
     "The key \"report\", which stands in messages of the archive and error queues, is passed over; any other key is an "
     "error."},
    {"QUEUE",
     "Messages of the driver's protocol are taken. While one is sent its status is R; a two-way message that was sent is Q "
     "until its answer is there. What is final goes to queue 4, what failed to queue 5, each with a \"report\" in its "
     "body; what waits for its device goes to queue 10 and comes back when its receiver has a session. docs/queues.md "
     "tells more."},
    {"OUTPUT",
     "Event \"send\" is what the driver answered at once, \"report\" what came back later, \"move\" the queue that "
     "a message went to. What the driver logs "
     "as an error while it takes a message also goes to standard error, one line a message. The keys of a JSON line: time, "
     "job_id, event, status, status_name, keep_open, text, delivery_status, response, failure_reason."},
    {"EXIT STATUS",
     "0  no message failed\n"
     "1  a message failed\n"
     "2  the call or a file is wrong; nothing was sent\n"
     "3  the driver could not be loaded or configured"},
    {"ENVIRONMENT", "VKMXP_ROOT is set to the installation root for the driver."},
    {"EXAMPLE", "vkmessenger send --root /srv/paging --message alarm.json --wait 60 --json"},
};

constexpr vk::Program kProgram = {
    "vkmessenger",
    "the reference host: hands message files to a driver and shows what becomes of them",
    "Loads a protocol driver as any host does, through the two functions that its library exports, hands over the "
    "message files and polls for answers until every message is final or the time is over.",
    {},
    kCommands,
    kSections,
};

} // namespace

int main(int argc, char** argv) { return vk::RunProgram(kProgram, argc, argv); }
