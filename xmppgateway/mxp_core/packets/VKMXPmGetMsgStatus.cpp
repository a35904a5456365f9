#include "VKMXPmGetMsgStatus.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmGetMsgStatus>;
