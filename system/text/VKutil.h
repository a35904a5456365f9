#pragma once

/// \file
/// Everything that the free functions with VKutil* names need: the text concepts they share with VKstring*, and what
/// they tell of this machine and its processes.

#include "VKbuffer.h"
#include "VKfileName.h"
#include "VKnetwork.h"
#include "VKprintf.h"
#include "VKprocess.h"
#include "VKstring.h"
