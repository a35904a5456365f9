#include "VKMXPmConfirmMsg.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmConfirmMsg>;
