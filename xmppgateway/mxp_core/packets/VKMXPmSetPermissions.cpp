#include "VKMXPmSetPermissions.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmSetPermissions>;
