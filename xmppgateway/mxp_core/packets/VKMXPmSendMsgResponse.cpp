#include "VKMXPmSendMsgResponse.h"

#include "VKMXPmFields.h"

template class vk::mxp::TablePacket<VKMXPmSendMsgResponse>;
