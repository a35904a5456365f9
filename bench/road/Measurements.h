#pragma once

#include "Measurement.h"

#include <string>

/// \file
/// Everything that is measured, in the order of the table in main.cpp.

// --- Delivery.

/// From the call of SendAMessage to the device's stanza handler, one message at a time on an idle system.
Figure HandoffP50(Stage& stage);
Figure HandoffP99(Stage& stage);
Figure HandoffP50TenConnections(Stage& stage);
Figure HandoffP50ThousandSessions(Stage& stage);
/// What the call itself costs the host's thread.
Figure SendCallP50(Stage& stage);
/// From the device's answer leaving it to the entry in the request cache.
Figure AnswerP50(Stage& stage);
/// Messages a second, many to many sessions through one connection.
Figure Throughput(Stage& stage);
/// Messages a second from a message queue to the devices, by vkmessenger as a process of its own: polled, sent, archived.
Figure QueueMessagesPerSecond(Stage& stage);

// --- Idleness.

/// CPU of a process of its own over some seconds in which nothing happens: with one connection and 1,000 sessions, and
/// with none at all; beside it a bare client with 1,000 message sessions.
Figure IdleCpu(Stage& stage);
Figure IdleCpuNoConnection(Stage& stage);
/// One work round over 10,000 idle sessions.
Figure RoundOverTenThousand(Stage& stage);
/// Heap that one idle session holds beyond a bare message session.
Figure SessionBytes(Stage& stage);

/// The body of such an idle process: prints its share of a core in percent. \param kind "sessions", "none" or "bare"
int RunIdleProcess(const std::string& kind, int port);

// --- Parts.

/// Reading and writing an envelope of 1 KiB, beside expat alone reading the same bytes.
Figure PacketCodec(Stage& stage);
/// A packet among 1,000 of an envelope, beside a packet among ten: the cost must be linear.
Figure EnvelopeOfThousand(Stage& stage);
/// The worst of all kinds of packets, requests and responses, read and written beside expat alone on the same bytes.
Figure PacketKinds(Stage& stage);
/// A directory response of 10,000 recipients, in the same way.
Figure RecipientsTenThousand(Stage& stage);
/// A log call below the level.
Figure LogOff(Stage& stage);
/// What a record through the multi-threaded logger costs its caller.
Figure LogQueued(Stage& stage);
/// States of 1,000 jobs stored as one list, beside the same statements in the bare library in one transaction.
Figure StatusListOfThousand(Stage& stage);

// --- Stores.

/// Messages added to a queue a second, beside the bare library and a plain file write with the same durability.
Figure QueueAdd(Stage& stage);
/// A poll that takes 100 ready messages of 100,000, beside the statement that finds them.
Figure QueuePoll(Stage& stage);
/// Messages a second that eight processes take from one queue, beside one process.
Figure QueueProcesses(Stage& stage);
/// The factory's object when it is there.
Figure FactoryHit(Stage& stage);
/// A receiver by id, and a list of 10,000, beside the same statements in the bare library.
Figure ReceiverById(Stage& stage);
Figure ReceiverListTenThousand(Stage& stage);

// --- Connections.

/// Connect and log in, TLS and all.
Figure ConnectP50(Stage& stage);
/// What 1,000 connects and disconnects leave behind.
Figure ReconnectGrowth(Stage& stage);
