#include "VKRDBXmppGWUser.h"

#include "VKRDBConnection.h"

bool VKRDBXmppGWUser::Initialize(VKDBsystem* system)
{
    UseStore(vk::OpenServerStore(*system, kStatementLimit));
    VKDBbaseInterface::Initialize(system);
    return PopulateDefaultUsers();
}
