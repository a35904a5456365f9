#pragma once

#include "Options.h"

namespace vk {

/// The noun "queue": the messages of one queue by its number. Reading takes no message from anybody.
int ListQueue(const Arguments& arguments);
/// All of one message's row, and its body.
int ShowQueued(const Arguments& arguments);
/// Adds the message of a JSON file and prints its id.
int AddToQueue(const Arguments& arguments);
/// Gives back what services hold: all of one service, or of all that have held something too long.
int UnlockQueue(const Arguments& arguments);
/// Gives the message files that have no row one, when a queue's database was lost: what the body does not say, as when a
/// message is due, is lost. No service may be using the queue.
int RecoverQueue(const Arguments& arguments);
/// Deletes old messages, or the oldest beyond a count.
int CleanQueue(const Arguments& arguments);

} // namespace vk
