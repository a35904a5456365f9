#include "VKMXPmActivate.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmActivate>;
