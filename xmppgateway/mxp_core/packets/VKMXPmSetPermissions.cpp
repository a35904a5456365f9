#include "VKMXPmSetPermissions.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmSetPermissions>;
