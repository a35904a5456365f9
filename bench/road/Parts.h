#pragma once

#include "Measurement.h"

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
