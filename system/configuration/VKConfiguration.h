#pragma once

#include "VKDataSource.h"
#include "VKDeviceStatus.h"
#include "VKDirectoryPath.h"
#include "VKGlobalSettings.h"
#include "VKMXPManagerSettings.h"
#include "VKSerialPorts.h"
#include "VKXMPPGatewaySettings.h"

#include <array>
#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// Where the system lives and how it is set up: the installation's directories and the files of its configuration
/// directory, read once and kept. Each read operation takes a `force` that reads afresh; without it a kept copy costs a
/// pointer test. Records belong to this object, which is never deleted.
///
/// Threads share the kept records, and a forced read rewrites them in place: force a read only at set-up, from one
/// thread. The two gateway files are an exception, see below. Nothing is thrown or logged, for this class runs before any logger exists: what cannot be read is null,
/// empty or the defaults. Files are locked, shared to read and exclusive to write.
///
/// The installation stands at the fixed path, or where the environment variable VKMXP_ROOT, an absolute path, says when
/// the object is made. A process whose installation is at neither begins with
///
///     VKConfiguration* configuration = VKConfiguration::getVKConfiguration();
///     configuration->setConfDirectory(root + "/config");
///     configuration->loadPrimaryConfiguration(true);
class VKConfiguration
{
public:
    /// The one object of the process, made, with a loadPrimaryConfiguration(false), on the first call.
    static VKConfiguration* getVKConfiguration();

    VKConfiguration(const VKConfiguration&) = delete;
    VKConfiguration& operator=(const VKConfiguration&) = delete;

    /// Finds the directories, then reads version, directories and data source. Whether both of the latter were read.
    bool loadPrimaryConfiguration(bool force);

    // --- Directories of the installation. All end in "/", but a conf directory that was set keeps its text.

    /// Sets the conf directory, the root to the directory above it and the temp directory in that root. Once a root is
    /// set, a forced read of the directories finds them below it: the conf directory is then the root's "config".
    void setConfDirectory(const std::string& dir);
    std::string getConfDirectory(bool force) { return getConfDirectoryPtr(force); }
    std::string getBinDirectory(bool force) { return getBinDirectoryPtr(force); }
    std::string getTempDirectory(bool force) { return getTempDirectoryPtr(force); }
    std::string getRootDirectory(bool force) { return getRootDirectoryPtr(force); }
    /// The kept texts themselves, good until the next forced read or setConfDirectory.
    const char* getConfDirectoryPtr(bool force);
    const char* getBinDirectoryPtr(bool force);
    const char* getTempDirectoryPtr(bool force);
    const char* getRootDirectoryPtr(bool force);

    // --- The file "dir".

    /// Never null; zero-filled when there is no file.
    VK_DIRECTORY_PATH* getDirectory(bool force);
    /// Writes what the records hold now.
    bool setDirectory();
    /// The further queues, sorted by name regardless of case. Null when the file was not read.
    VK_QUEUE_DIRECTORY_PATH* getQueueDirectory(bool force);
    int getQueueDirectoryCount(bool force);

    /// The file "datasource"; null when it cannot be read.
    VK_DATA_SOURCE* getDataSource(bool force);

    // --- The file "global".

    /// Never null: the defaults when there is no file, which is written then. A file that is shorter than the record
    /// gives what it has.
    VK_GLOBAL_SETTINGS* getGlobalSettings(bool force);
    /// Writes what the record holds now, and for a cluster the file "vdk_cluster.cfg" too.
    bool setGlobalSettings();

    /// What has to follow the global settings and stands above this class. Called after each fresh read of them, on the
    /// thread that reads, and at once when they were read before. Register once, for the life of the process.
    using GlobalSettingsObserver = std::function<void(const VK_GLOBAL_SETTINGS&)>;
    void observeGlobalSettings(GlobalSettingsObserver observer);

    /// The file "sysinfo". Never null; all zeros when there is no file.
    VK_SYSTEM_ATTENDANT_SETTINGS* getSystemAttendantSettings(bool force);
    bool setSystemAttendantSettings();

    /// Reads the file "device_status_config" into a list, whose old elements are freed. False, with the list empty,
    /// when it cannot be read.
    bool getDeviceStatusList(VK_DEVICE_STATUS_LIST* list);

    /// Reads the serial lines from the XML file at `path`, or from the file "ports" when that is a directory, into a
    /// list, whose old elements are freed. False, with the list empty, when it cannot be read.
    static bool GetPorts(const std::string& path, VK_TGATE_PORTINFO_HEADER* ports);

    // --- The files "xmppgateway_config.xml" and "mxp_config.xml".

    /// Null when the file cannot be read or lacks a required element: getGatewaySettingsError tells which. The record
    /// that was kept before is gone then; a later call tries again.
    ///
    /// Threads: any. A reload gives a new record and leaves the old one as it is to those who have it.
    VKXMPPGatewaySettings* getXMPPGatewaySettings(bool reload);
    VKMXPManagerSettings* getMXPManagerSettings(bool reload);
    /// The kept record; null when there is none.
    VKMXPManagerSettings* getMXPSettingsObject() const { return m_mxpManager.Get(); }
    /// Writes the record into the file and keeps it. What the file holds besides stays, so a file that cannot be
    /// understood is left alone. False, with nothing changed, on failure.
    bool setXMPPGatewaySettings(VKXMPPGatewaySettings* settings);
    bool setMXPManagerSettings(VKMXPManagerSettings* settings);
    /// Why the last of these operations failed, naming the file; empty when it did not.
    std::string getGatewaySettingsError();

    /// The general policy's JSON text into the record's policy and back. False, with no value present, for a text that
    /// is no JSON object. A member of another kind than its value is left out; unknown members stay in the text.
    static bool ConvertJSONToGeneralPolicyData(const std::string& text, VKMXPManagerSettings* settings);
    static std::string ConvertGeneralPolicyToJSON(VKMXPManagerSettings* settings);

    // --- Facts.

    /// The first line of the file "version", with its line end; "Unknown" when there is none.
    std::string getProductVersion(bool force);
    int getProductPatch(bool) const { return 639; }
    /// The name of a receiver's device type; empty for an unknown one.
    static std::string getDeviceTypeName(unsigned int type);
    /// Whether the file "backupflag" in the temp directory can be opened.
    bool isBackupInProgress();

    std::string getUpgradeDirectory();
    std::string getUpgradePackageDirectory();
    std::string getUpgradeArchiveDirectory();
    std::string getUpgradeExtractDirectory();
    std::string GetCABundlePath();
    std::string GetClientCertPath();
    std::string GetClientKeyPath();
    std::string GetSerialGatewayConfigFileName();

    // --- Helpers on paths.

    /// Directory, "/" unless it ends in one, and name. The first form writes into `out`, which must have the room.
    static char* createPath(char* out, const char* dir, const char* name);
    static std::string createPath(const std::string& dir, const std::string& name);
    /// Puts the source file in the place of the target. Without a source the target is left alone.
    static bool setFileName(std::string target, std::string source);
    /// Each "\" becomes "/", in place.
    static void pathFilter(char* path);

private:
    struct FreeMemory
    {
        void operator()(void* memory) const;
    };

    /// A record that is read once. Forced reads rewrite it in place, at the same address, or put another in its place.
    template <class Record> class Kept
    {
    public:
        Kept() = default;
        ~Kept() { Drop(); }
        Kept(const Kept&) = delete;
        Kept& operator=(const Kept&) = delete;

        /// Null before the first Keep and after a Drop.
        Record* Get() const { return m_record.load(std::memory_order_acquire); }
        Record* Keep(const Record& fresh)
        {
            if (Record* const record = Get())
                *record = fresh;
            else
                m_record.store(new Record(fresh), std::memory_order_release); // Drop deletes it
            return Get();
        }
        void Drop() { delete m_record.exchange(nullptr); }

        /// Puts a new record, or none, in the place of the kept one, which stays valid and as it is for those who still use
        /// it, until kRetired others have followed it. Callers take turns.
        Record* Replace(std::unique_ptr<Record> fresh)
        {
            if (Record* const old = m_record.exchange(fresh.release(), std::memory_order_acq_rel))
                m_retired.emplace_back(old);
            if (m_retired.size() > kRetired)
                m_retired.pop_front();
            return Get();
        }

    private:
        static constexpr std::size_t kRetired = 256;
        std::atomic<Record*> m_record{nullptr};
        std::deque<std::unique_ptr<Record>> m_retired; ///< the oldest first
    };

    VKConfiguration() = default;

    // Each reads its file afresh, unless another thread has just done so and `force` is false.
    VK_DIRECTORY_PATH* ReadDirectory(bool force);
    VK_DATA_SOURCE* ReadDataSource(bool force);
    VK_GLOBAL_SETTINGS* ReadGlobalSettings(bool force);
    VK_SYSTEM_ATTENDANT_SETTINGS* ReadSystemAttendant(bool force);
    VKXMPPGatewaySettings* ReadXMPPGateway(bool reload);
    VKMXPManagerSettings* ReadMXPManager(bool reload);

    std::string ConfPath(const char* name) { return createPath(getConfDirectory(false), name); }
    std::string RootPath(const char* name) { return createPath(getRootDirectory(false), name); }
    void KeepQueues(const std::vector<VK_QUEUE_DIRECTORY_PATH>& queues);
    bool WriteGlobalSettings(const VK_GLOBAL_SETTINGS& settings);

    std::string m_strProductVersion;
    std::string m_strRootDir;
    std::string m_strConfDir;
    std::string m_strTempDir;
    std::string m_strBinDir;
    Kept<VK_DIRECTORY_PATH> m_directory; ///< null, like the records below, until first read
    std::unique_ptr<VK_QUEUE_DIRECTORY_PATH, FreeMemory> m_pQueueDirectories; ///< a malloc()ed array
    int m_iQueueDirectories = 0;
    Kept<VK_GLOBAL_SETTINGS> m_global;
    Kept<VK_DATA_SOURCE> m_dataSource;
    Kept<VK_SYSTEM_ATTENDANT_SETTINGS> m_systemAttendant;
    Kept<VKXMPPGatewaySettings> m_xmppGateway;
    Kept<VKMXPManagerSettings> m_mxpManager;
    std::string m_strGatewayError; ///< guarded by m_readLock

    std::array<unsigned char, 32> m_globalHeader{}; ///< of the file "global"; kept, not interpreted
    std::vector<GlobalSettingsObserver> m_observers;
    std::recursive_mutex m_readLock; ///< one fresh read at a time; guards m_observers

    static VKConfiguration* me;
};
