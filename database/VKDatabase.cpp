#include "VKDatabase.h"

#include <utility>

#include "VKConfiguration.h"
#include "VKDBexception.h"
#include "VKDBiActiveMxpClient.h"
#include "VKDBiDepartment.h"
#include "VKDBiMessageQueue.h"
#include "VKDBiCarrier.h"
#include "VKDBiReceiver.h"
#include "VKDBiReceiverView.h"
#include "VKDBiXmppGWUser.h"
#include "VKDatabaseMultiThreaded.h"

namespace {

constexpr time_t kLifeSeconds = 1800;

std::mutex s_instanceLock;

/// What the entities look at is set whenever the global settings are read.
void TakeGlobalSettings(const VK_GLOBAL_SETTINGS& settings)
{
    VKDBiReceiver::s_bIsCoverByAllowed = settings.cover_by_allowed != 0;
    VKDBiDepartment::s_lMaxMembers = settings.max_members;
    VKDBiDepartment::s_bRecLimit = settings.receiver_limit != 0;
    VKDBiDepartment::s_bCountGrp = settings.count_groups != 0;
}

void FollowGlobalSettings(VKConfiguration& configuration)
{
    static std::once_flag registered;
    std::call_once(registered, [&] { configuration.observeGlobalSettings(TakeGlobalSettings); });
}

} // namespace

VKDatabase* VKDatabase::me = nullptr;

VKDatabase::VKDatabase(VKsysEventLogInterface* eventLog, bool multiThreaded)
    : m_bMultiThreaded(multiThreaded), m_pEventLog(eventLog)
{
}

VKDatabase::~VKDatabase()
{
    m_cache.clear();
    if (m_bReady)
        m_dbSystem.Close();
    const std::lock_guard<std::mutex> lock(s_instanceLock);
    if (me == this)
        me = nullptr;
}

template <class Database> VKDatabase* VKDatabase::Instance(VKsysEventLogInterface* eventLog, bool multiThreaded)
{
    const std::lock_guard<std::mutex> lock(s_instanceLock);
    if (me == nullptr) {
        me = new Database(eventLog, multiThreaded); // owned by the host through me
        me->openDatabase();
    }
    return me;
}

VKDatabase* VKDatabase::getVKDatabase(VKsysEventLogInterface* eventLog, bool multiThreaded)
{
    return Instance<VKDatabase>(eventLog, multiThreaded);
}

VKDatabase* VKDatabase::getVKMultiThreadedDatabase(VKsysEventLogInterface* eventLog, bool multiThreaded)
{
    return Instance<VKDatabaseMultiThreaded>(eventLog, multiThreaded);
}

bool VKDatabase::openDatabase()
{
    const std::lock_guard<std::mutex> lock(m_openLock);
    return OpenLocked();
}

bool VKDatabase::EnsureOpen()
{
    if (m_bReady)
        return true;
    const std::lock_guard<std::mutex> lock(m_openLock);
    return m_bReady || OpenLocked();
}

bool VKDatabase::OpenLocked()
{
    SetLastError("");
    if (m_bReady && !m_dbSystem.Close())
        return false;
    m_bReady = false;
    try {
        VKConfiguration* const configuration = VKConfiguration::getVKConfiguration();
        FollowGlobalSettings(*configuration);
        OpenSource(*configuration);
        m_bReady = true;
        return true;
    } catch (const VKDBexception& failure) {
        SetLastError(failure.GetMsg());
    } catch (...) {
        SetLastError("Error.");
    }
    return false;
}

void VKDatabase::OpenSource(VKConfiguration& configuration)
{
    const VK_DATA_SOURCE* const source = configuration.getDataSource(true);
    if (source == nullptr)
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__,
                            "The file [" +
                                VKConfiguration::createPath(configuration.getConfDirectory(false), "datasource") +
                                "] cannot be read.");
    if (source->database_type == DbTypeOdbc) {
        m_dbSystem.OpenDatabase(source->connect_string, source->user, source->password, DbTypeOdbc,
                                configuration.getDirectory(false), source->oracle, m_bMultiThreaded,
                                source->uses_dsn, m_pEventLog);
        // The fax and voice queues are files on every installation.
        VKDBsystem::sys_Config_Dir = configuration.getConfDirectory(false);
        VKDBsystem::queue_Directory = configuration.getQueueDirectory(false);
        VKDBsystem::num_Queues = configuration.getQueueDirectoryCount(false);
        return;
    }
    m_dbSystem.OpenSdb(configuration.getConfDirectory(false), configuration.getRootDirectory(false),
                       configuration.getDirectory(false), configuration.getQueueDirectory(false),
                       configuration.getQueueDirectoryCount(false), m_pEventLog);
}

bool VKDatabase::closeDatabase()
{
    const std::lock_guard<std::mutex> lock(m_openLock);
    m_bReady = false;
    return m_dbSystem.Close();
}

VKDBsystem* VKDatabase::getDBSystemObject() { return m_bReady ? &m_dbSystem : nullptr; }

std::string VKDatabase::getLastErrorString() const
{
    const std::lock_guard<std::mutex> lock(m_errorLock);
    return m_strLastError;
}

void VKDatabase::SetLastError(const std::string& text)
{
    const std::lock_guard<std::mutex> lock(m_errorLock);
    m_strLastError = text;
}

template <class Entity, class... Keys> Entity* VKDatabase::ObjectOf(const std::string& key, const Keys&... keys)
{
    SetLastError("");
    if (!EnsureOpen())
        return nullptr;
    try {
        auto* object = static_cast<Entity*>(TakeFromCache(key));
        if (object == nullptr || object->IsConnectionStale()) {
            preprocessDbSystem();
            object = Entity::CreateInstance(&m_dbSystem, keys...);
            setCacheLine(key, object);
        }
        object->ClearFilter(); // no caller inherits another one's filter
        object->ClearSort();
        return object;
    } catch (const VKDBexception& failure) {
        SetLastError(failure.GetSysMsg().empty() ? failure.GetMsg() : failure.GetMsg() + ": " + failure.GetSysMsg());
        return nullptr;
    }
}

VKDBiDepartment* VKDatabase::getVKDBiDepartmentObject() { return ObjectOf<VKDBiDepartment>("VKDBiDepartment"); }
VKDBiReceiver* VKDatabase::getVKDBiReceiverObject() { return ObjectOf<VKDBiReceiver>("VKDBiReceiver"); }
VKDBiReceiverView* VKDatabase::getVKDBiReceiverViewObject()
{
    return ObjectOf<VKDBiReceiverView>("VKDBiReceiverView");
}

VKDBiCarrier* VKDatabase::getVKDBiCarrierObject() { return ObjectOf<VKDBiCarrier>("VKDBiCarrier"); }
VKDBiXmppGWUser* VKDatabase::getVKDBiXmppGWUserObject() { return ObjectOf<VKDBiXmppGWUser>("VKDBiXmppGWUser"); }

VKDBiActiveMxpClient* VKDatabase::getVKDBiActiveMxpClientObject()
{
    return ObjectOf<VKDBiActiveMxpClient>("VKDBiActiveMxpClient");
}

VKDBiMessageQueue* VKDatabase::getVKDBiMessageQueueObject(int queueNumber)
{
    return ObjectOf<VKDBiMessageQueue>("VKDBiMessageQueue_" + std::to_string(queueNumber), queueNumber, std::string());
}

VKDBiMessageQueue* VKDatabase::getVKDBiMessageQueueObject(int queueNumber, const std::string& serviceName)
{
    return ObjectOf<VKDBiMessageQueue>("VKDBiMessageQueue_" + std::to_string(queueNumber) + "_" + serviceName,
                                       queueNumber, serviceName);
}

void VKDatabase::preprocessDbSystem()
{
    if (VKDBsystem::db_Type == DbTypeOdbc && !VKDBsystem::mutiple_Connections)
        m_dbSystem.ReviveSharedConnection();
}

void VKDatabase::resetCache() { m_cache.clear(); }
void VKDatabase::adjustCache() { TakeOld(m_cache); }
bool VKDatabase::isKeyInCache(const std::string& key) { return m_cache.count(key) != 0; }
std::unique_ptr<VKDBbaseInterface>* VKDatabase::getCacheLine(const std::string& key) { return &m_cache[key].object; }
void VKDatabase::setCacheLine(const std::string& key, VKDBbaseInterface* object) { Store(m_cache[key], object); }
void VKDatabase::setCacheLineExpiry(const std::string& key) { Renew(m_cache[key]); }
void VKDatabase::PurgeAllCache(bool) { resetCache(); }
void VKDatabase::PurgeMyCache() { PurgeAllCache(true); }

VKDBbaseInterface* VKDatabase::TakeFromCache(const std::string& key) { return Use(m_cache, key); }

time_t VKDatabase::Now() const { return time(nullptr); }

std::unique_ptr<VKDBbaseInterface> VKDatabase::Store(CacheLine& line, VKDBbaseInterface* object) const
{
    Renew(line);
    if (line.object.get() == object)
        return nullptr;
    return std::exchange(line.object, std::unique_ptr<VKDBbaseInterface>(object));
}

VKDBbaseInterface* VKDatabase::Use(Cache& cache, const std::string& key) const
{
    const auto found = cache.find(key);
    if (found == cache.end() || found->second.object == nullptr)
        return nullptr;
    Renew(found->second);
    return found->second.object.get();
}

void VKDatabase::Renew(CacheLine& line) const { line.expiry = Now() + kLifeSeconds; }

VKDatabase::Cache VKDatabase::TakeOld(Cache& cache) const
{
    Cache old;
    const time_t now = Now();
    for (auto line = cache.begin(); line != cache.end();) {
        const auto next = std::next(line);
        if (line->second.expiry <= now || line->second.object == nullptr)
            old.insert(cache.extract(line));
        line = next;
    }
    return old;
}
