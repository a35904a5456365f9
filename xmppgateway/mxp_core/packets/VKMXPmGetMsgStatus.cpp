#include "VKMXPmGetMsgStatus.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmGetMsgStatus>;
