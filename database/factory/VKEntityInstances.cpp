#include <memory>

#include "VKBALCarrier.h"
#include "VKBALDepartment.h"
#include "VKBALReceiver.h"
#include "VKDBexception.h"
#include "VKDBiReceiverView.h"
#include "VKDBsystem.h"
#include "VKMessageManager.h"
#include "VKRDBActiveMxpClient.h"
#include "VKRDBDepartment.h"
#include "VKRDBMessageQueue.h"
#include "VKRDBReceiver.h"
#include "VKRDBXmppGWUser.h"
#include "VKRDBcarrier.h"
#include "VKSQLite3ActiveMxpClient.h"
#include "VKSQLite3Department.h"
#include "VKSQLite3MessageQueue.h"
#include "VKSQLite3Receiver.h"
#include "VKSQLite3XmppGWUser.h"
#include "VKSQLite3carrier.h"

/// \file
/// The layers of each entity put together: the backend that the system is on, behind the validating layer. The one
/// place that knows all layers.

namespace {

template <class Interface, class FileBackend, class ServerBackend, class... Arguments>
std::unique_ptr<Interface> MakeBackend(const Arguments&... arguments)
{
    if (VKDBsystem::db_Type == DbTypeSdb)
        return std::make_unique<FileBackend>(arguments...);
    if (VKDBsystem::db_Type == DbTypeOdbc)
        return std::make_unique<ServerBackend>(arguments...);
    throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "No database is open.");
}

template <class Interface, class ValidatingLayer, class FileBackend, class ServerBackend>
Interface* MakeLayers(VKDBsystem* system)
{
    VKMessageManager::CreateInstance(system->GetDataConfigDir()); // the words of the rules
    auto backend = MakeBackend<Interface, FileBackend, ServerBackend>();
    backend->Initialize(system);
    auto wrapper = std::make_unique<ValidatingLayer>(std::move(backend));
    wrapper->Initialize(system);
    return wrapper.release();
}

/// An entity without rules has no validating layer.
template <class Interface, class FileBackend, class ServerBackend> Interface* MakePlain(VKDBsystem* system)
{
    auto backend = MakeBackend<Interface, FileBackend, ServerBackend>();
    backend->Initialize(system);
    return backend.release();
}

} // namespace

VKDBiDepartment* VKDBiDepartment::CreateInstance(VKDBsystem* system)
{
    return MakeLayers<VKDBiDepartment, VKBALDepartment, VKSQLite3Department, VKRDBDepartment>(system);
}

VKDBiReceiver* VKDBiReceiver::CreateInstance(VKDBsystem* system)
{
    return MakeLayers<VKDBiReceiver, VKBALReceiver, VKSQLite3Receiver, VKRDBReceiver>(system);
}

VKDBiXmppGWUser* VKDBiXmppGWUser::CreateInstance(VKDBsystem* system)
{
    return MakePlain<VKDBiXmppGWUser, VKSQLite3XmppGWUser, VKRDBXmppGWUser>(system);
}

VKDBiActiveMxpClient* VKDBiActiveMxpClient::CreateInstance(VKDBsystem* system)
{
    return MakePlain<VKDBiActiveMxpClient, VKSQLite3ActiveMxpClient, VKRDBActiveMxpClient>(system);
}

VKDBiReceiverView* VKDBiReceiverView::CreateInstance(VKDBsystem* system)
{
    auto view = std::make_unique<VKDBiReceiverView>(
        std::unique_ptr<VKDBiReceiver>(VKDBiReceiver::CreateInstance(system)));
    view->Initialize(system);
    return view.release();
}

VKDBiCarrier* VKDBiCarrier::CreateInstance(VKDBsystem* system)
{
    return MakeLayers<VKDBiCarrier, VKBALCarrier, VKSQLite3carrier, VKRDBcarrier>(system);
}

/// The fax and voice queues, 6 and 7, are files on every installation. A queue has no validating layer.
VKDBiMessageQueue* VKDBiMessageQueue::CreateInstance(VKDBsystem* system, int queueNumber, const std::string& serviceName)
{
    std::unique_ptr<VKDBiMessageQueue> queue;
    if (queueNumber == 6 || queueNumber == 7)
        queue = std::make_unique<VKSQLite3MessageQueue>(queueNumber, serviceName);
    else
        queue = MakeBackend<VKDBiMessageQueue, VKSQLite3MessageQueue, VKRDBMessageQueue>(queueNumber, serviceName);
    queue->Initialize(system);
    return queue.release();
}
