#pragma once

#include "Measurement.h"

/// Payload of a file of 50 MB over SOCKS5 once its stream is open, beside a plain socket copy in the same blocks.
Figure Socks5Rate(Stage& stage);
/// From a device's disco answer to the first byte of a file of 50 MB.
Figure FirstByte(Stage& stage);
/// Payload in-band through the server.
Figure InBandRate(Stage& stage);
/// Encryption of 50 MB, beside OpenSSL alone.
Figure EncryptRate(Stage& stage);
/// From the hand-over of a message to another device to its arrival, while files of 50 MB travel.
Figure HandoffDuringTransfer(Stage& stage);
/// CPU of the thread of a file sender that has nothing to send.
Figure IdleSenderCpu(Stage& stage);
/// The longest pause between the starts of two transfers, of a hundred on one connection.
Figure HundredTransfers(Stage& stage);
