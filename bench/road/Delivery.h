#pragma once

#include "Measurement.h"

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
