#include "VKMXPmSendMsg.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmSendMsg>;
