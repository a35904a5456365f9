#include "VKMXPmSetSettings.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmSetSettings>;
