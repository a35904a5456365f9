#pragma once

/// \file
/// Everything that the free functions with VKutil* names need: the text concepts they share with VKstring*.

#include "VKbuffer.h"
#include "VKstring.h"
