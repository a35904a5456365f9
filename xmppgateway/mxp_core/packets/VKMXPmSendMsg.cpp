#include "VKMXPmSendMsg.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmSendMsg>;
