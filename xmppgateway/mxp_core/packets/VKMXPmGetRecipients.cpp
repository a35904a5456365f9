#include "VKMXPmGetRecipients.h"

#include "VKMXPmFields.h"

template class vk::TablePacket<VKMXPmGetRecipients>;
