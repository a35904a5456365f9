#include "VKMXPmGetListReceivers.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmGetListReceivers>;
