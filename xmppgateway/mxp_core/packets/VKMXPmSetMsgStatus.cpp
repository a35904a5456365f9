#include "VKMXPmSetMsgStatus.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmSetMsgStatus>;
