#include "VKMXPmSetMsgStatus.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmSetMsgStatus>;
