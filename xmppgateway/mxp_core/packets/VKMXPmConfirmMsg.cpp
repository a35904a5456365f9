#include "VKMXPmConfirmMsg.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmConfirmMsg>;
