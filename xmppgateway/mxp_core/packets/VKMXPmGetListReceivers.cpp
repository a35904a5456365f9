#include "VKMXPmGetListReceivers.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmGetListReceivers>;
