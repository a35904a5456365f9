#include "VKMXPmSetSettings.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmSetSettings>;
