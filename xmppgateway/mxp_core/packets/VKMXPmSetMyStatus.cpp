#include "VKMXPmSetMyStatus.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmSetMyStatus>;
