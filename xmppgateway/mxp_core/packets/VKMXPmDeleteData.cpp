#include "VKMXPmDeleteData.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmDeleteData>;
