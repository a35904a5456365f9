#include "VKMXPmMessage.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmMessage>;
