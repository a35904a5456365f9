#include "VKMXPmGetRecipients.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmGetRecipients>;
