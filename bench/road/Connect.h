#pragma once

#include "Measurement.h"

/// Connect and log in, TLS and all.
Figure ConnectP50(Stage& stage);
/// What 1,000 connects and disconnects leave behind.
Figure ReconnectGrowth(Stage& stage);
