#include "VKMXPmDeleteData.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmDeleteData>;
