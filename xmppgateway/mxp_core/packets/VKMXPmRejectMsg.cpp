#include "VKMXPmRejectMsg.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmRejectMsg>;
