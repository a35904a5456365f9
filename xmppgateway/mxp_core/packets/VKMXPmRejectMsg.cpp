#include "VKMXPmRejectMsg.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmRejectMsg>;
