#include "LockingProcess.h"
#include "TempDir.h"
#include "VKConfiguration.h"
#include "VKioFile.h"

#include <cstring>
#include <gmock/gmock.h>
#include <sstream>
#include <thread>

using testing::ElementsAre;

namespace {

/// The values of a record, in the order of its table.
template <class Table, class Record> std::string Shown(const Table& table, const Record& record)
{
    std::ostringstream text;
    vk::ForEachField(table, [&](const auto& field) { text << field.of(record) << '|'; });
    return text.str();
}

/// Each test gets an installation of its own.
class ConfigurationTest : public testing::Test
{
protected:
    ConfigurationTest() : configuration(*VKConfiguration::getVKConfiguration())
    {
        std::filesystem::create_directories(root / "config");
        configuration.setConfDirectory(root / "config");
        configuration.loadPrimaryConfiguration(true);
    }

    void Write(const std::string& name, const std::string& content) { root.Write("config/" + name, content); }
    std::string Read(const std::string& name) { return root.Read("config/" + name); }

    std::vector<std::string> Queues(bool force)
    {
        std::vector<std::string> queues;
        const VK_QUEUE_DIRECTORY_PATH* list = configuration.getQueueDirectory(force);
        for (int i = 0; i < configuration.getQueueDirectoryCount(false); ++i)
            queues.push_back(std::to_string(list[i].id) + " " + list[i].name + "=" + list[i].path);
        return queues;
    }

    TempDir root;
    VKConfiguration& configuration;
};

TEST_F(ConfigurationTest, FindsTheDirectoriesOfAnInstallationElsewhere)
{
    const std::string conf = root / "config";
    configuration.setConfDirectory(conf);
    EXPECT_EQ(configuration.getConfDirectory(false), conf);
    EXPECT_EQ(configuration.getRootDirectory(false), conf + "/../");
    EXPECT_EQ(configuration.getTempDirectory(false), conf + "/../temp/");
    configuration.loadPrimaryConfiguration(true);
    EXPECT_EQ(configuration.getConfDirectory(false), conf + "/../config/");
    EXPECT_EQ(configuration.getRootDirectory(true), conf + "/../");
    EXPECT_EQ(configuration.getBinDirectory(false), conf + "/../bin/");
    EXPECT_EQ(configuration.getUpgradeExtractDirectory(), conf + "/../upgrades/extracts");
    EXPECT_EQ(configuration.GetCABundlePath(), conf + "/../config/ca-bundle.crt");
}

/// Each case is a process of its own, since the configuration is made once.
TEST(ConfigurationRoot, IsNamedByTheEnvironmentWhenThatIsAbsolute)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::pair<const char*, const char*> cases[] = {{"/srv/paging", "/srv/paging/"},
                                                         {"/srv/paging/", "/srv/paging/"},
                                                         {"srv", "/usr/local/vardock/"},
                                                         {"", "/usr/local/vardock/"}};
    for (const auto& [value, root] : cases) {
        const auto rootWith = [value = value] {
            setenv("VKMXP_ROOT", value, 1);
            return VKConfiguration::getVKConfiguration()->getRootDirectory(false);
        };
        EXPECT_EXIT(_exit(rootWith() == root ? 0 : 1), testing::ExitedWithCode(0), "") << value;
    }
}

TEST_F(ConfigurationTest, KeepsTheFirstLineOfTheVersion)
{
    EXPECT_EQ(configuration.getProductVersion(true), "Unknown");
    const std::pair<std::string, std::string> cases[] = {
        {"7.1\r\nsecond\n", "7.1\r\n"}, {"", ""}, {std::string(150, '9'), std::string(100, '9')}, {"7.2", "7.2"}};
    for (const auto& [content, version] : cases) {
        Write("version", content);
        EXPECT_EQ(configuration.getProductVersion(true), version);
    }
    Write("version", "8");
    EXPECT_EQ(configuration.getProductVersion(false), "7.2");
    EXPECT_EQ(configuration.getProductPatch(false), 639);
}

TEST_F(ConfigurationTest, ReadsDirectoriesAndQueues)
{
    const std::string longPath(300, 'w'), longName(60, 'z');
    Write("dir", "spool_dir:\t\t/var/spool\nsnmp_spool_dir:\t/var/snmp \r\nlog_directory of old\t/var/log\n"
                 "fax_dir:/no/tab\nwaiting_dir:\t\t" +
                     longPath + "\n  7\tbeta\t/queue/b  \n8\tAlpha\t/queue/a\n0\tnone\t/queue/0\n9\tno path\n-3\t" +
                     longName + "\t/queue/z\n\n");
    EXPECT_EQ(Shown(vk::kDirectoryFields, *configuration.getDirectory(true)),
              "/var/snmp|||||/var/log|||||||||" + longPath.substr(0, 255) + "|")
        << "the second key overrides the first; a key is a prefix";
    EXPECT_THAT(Queues(false),
                ElementsAre("8 Alpha=/queue/a", "7 beta=/queue/b", "-3 " + longName.substr(0, 50) + "=/queue/z"));
}

TEST_F(ConfigurationTest, MakesADefaultQueueAndWritesIt)
{
    EXPECT_TRUE(Queues(true).empty()) << "there is no file yet";
    Write("dir", "spool_dir:\t\t/var/spool\n");
    EXPECT_THAT(Queues(true), ElementsAre("101 Default=/var/spool"));
    std::strcpy(configuration.getDirectory(false)->wap_dir, "/var/wap");
    ASSERT_TRUE(configuration.setDirectory());
    EXPECT_EQ(Read("dir"), "spool_dir:\t\t/var/spool\nsnmp_spool_dir:\t\t/var/spool\ncascade_dir:\t\t\n"
                           "schedule_dir:\t\t\narchive_dir:\t\t\nlog_dir:\t\t\nerror_dir:\t\t\nfilter_dir:\t\t\n"
                           "report_dir:\t\t\nstat_dir:\t\t\nwap_dir:\t\t/var/wap\nfax_dir:\t\t\nvoice_dir:\t\t\n"
                           "attachment_dir:\t\t\nwaiting_dir:\t\t\n101\tDefault\t/var/spool\n");

    Write("dir", "spool_dir:\t\t/var/spool\n1\ta\t/a\n2\tb\t/b\n");
    configuration.getDirectory(true);
    ASSERT_TRUE(configuration.setDirectory());
    EXPECT_EQ(Read("dir").find("snmp_spool_dir:\t\t/var/spool\n"), 0U) << "with two queues the first line is left out";
    EXPECT_THAT(Queues(true), ElementsAre("1 a=/a", "2 b=/b"));
    EXPECT_STREQ(configuration.getDirectory(false)->spool_dir, "/var/spool");
}

TEST_F(ConfigurationTest, ReadsTheDataSource)
{
    const auto read = [&](const std::string& content) {
        Write("datasource", content);
        const VK_DATA_SOURCE& source = *configuration.getDataSource(true);
        return std::to_string(source.database_type) + (source.oracle ? " oracle" : "") +
               (source.uses_dsn ? " dsn" : "") + "|" + source.connect_string + "|" + source.user + "|" +
               source.password;
    };
    EXPECT_EQ(configuration.getDataSource(true), nullptr);
    EXPECT_EQ(read("database_type: Sdb\ndb_user: u\ndb_password: p\n"), "1 dsn|||");
    EXPECT_EQ(read(" db_user:\tu \nDB_PASSWORD:p w\r\ndb_connect_string:DSN=x;y\nDatabase_Type:\toDBC\n"),
              "2 dsn|DSN=x;y|u|p w");
    EXPECT_EQ(read("database_type:Oracle\ndb_user:u\ndb_connect_type: driver\n"), "2 oracle||u|");
    EXPECT_EQ(read("database_type:Odbc\ndb_connect_type: dsn-less\n"), "2 dsn|||");
    EXPECT_EQ(read("database_type:Odbcs\ndb_user:u\n"), "0 dsn|||");
    EXPECT_EQ(read("\x01\x02\xff no keyword\n\n"), "0 dsn|||");
    EXPECT_EQ(read("database_type:Odbc\ndb_user:" + std::string(90, 'u') + "\n"),
              "2 dsn||" + std::string(54, 'u') + "|");
    EXPECT_EQ(configuration.getDataSource(false), configuration.getDataSource(true)) << "rewritten in place";
    std::filesystem::remove(root / "config/datasource");
    EXPECT_EQ(configuration.getDataSource(true), nullptr);
}

using Words = std::initializer_list<std::pair<std::size_t, std::uint32_t>>;

std::string GlobalFile(Words values)
{
    std::string content(32 + 6360, '\0');
    content.replace(0, 6, "header");
    for (const auto& [offset, value] : values)
        std::memcpy(content.data() + 32 + offset, &value, sizeof value);
    return content;
}

std::uint32_t WordAt(const void* settings, std::size_t offset)
{
    std::uint32_t word = 0;
    std::memcpy(&word, static_cast<const char*>(settings) + offset, sizeof word);
    return word;
}

TEST_F(ConfigurationTest, ChecksTheRangesOfTheGlobalSettings)
{
    const std::tuple<std::size_t, std::uint32_t, std::uint32_t> cases[] = {
        {548, 5000, 200}, {548, 1000, 1000}, {552, 1001, 200},      {556, 0, 1}, {556, 7, 7},     {2312, 2, 3},
        {2312, 4, 4},     {4104, 0, 10},     {2312, 0xffffffff, 3}, {4, 0, 0},   {4104, 101, 10}, {4104, 100, 100}};
    for (const auto& [offset, stored, read] : cases) {
        Write("global", GlobalFile({{offset, stored}}));
        EXPECT_EQ(WordAt(configuration.getGlobalSettings(true), offset), read) << offset;
    }
}

TEST_F(ConfigurationTest, WritesTheDefaultsOfANewInstallation)
{
    EXPECT_EQ(configuration.getGlobalSettings(true)->value_4, 200U);
    const std::string content = Read("global");
    ASSERT_EQ(content.size(), 32U + 6360U);
    const Words defaults = {{4, 200},    {8, 20},   {12, 10},   {24, 50},  {28, 1000}, {548, 100},
                            {552, 100},  {556, 1},  {560, 1},   {564, 30}, {568, 0},   {1880, 30},
                            {1884, 500}, {2312, 3}, {3996, 10}, {4000, 2}, {4104, 10}};
    for (const auto& [offset, expected] : defaults)
        EXPECT_EQ(WordAt(content.data() + 32, offset), expected) << offset;
    EXPECT_STREQ(content.data() + 32 + 4004, "FFFFFF");
}

TEST_F(ConfigurationTest, KeepsTheHeaderAndTellsObservers)
{
    static std::vector<std::uint32_t> seen; // the observer outlives this test
    seen.clear();
    configuration.getGlobalSettings(true);
    configuration.observeGlobalSettings([](const VK_GLOBAL_SETTINGS& settings) {
        seen.insert(seen.end(), {settings.cover_by_allowed, static_cast<std::uint32_t>(settings.max_members),
                                 settings.receiver_limit, settings.count_groups});
    });
    EXPECT_THAT(seen, ElementsAre(0, 0, 0, 0)) << "they were read before";
    Write("global", GlobalFile({{1912, 1}, {3264, 250}, {3268, 1}, {3788, 1}, {568, 1}}));
    configuration.getGlobalSettings(true);
    EXPECT_THAT(seen, ElementsAre(0, 0, 0, 0, 1, 250, 1, 1));
    configuration.getGlobalSettings(false)->value_4 = 77;
    EXPECT_EQ(seen.size(), 8U) << "a kept copy changes nothing";

    ASSERT_TRUE(configuration.setGlobalSettings());
    EXPECT_EQ(Read("global").substr(0, 6), "header");
    EXPECT_EQ(configuration.getGlobalSettings(true)->value_4, 77U);
    EXPECT_EQ(Read("vdk_cluster.cfg"), "1\n");
}

TEST_F(ConfigurationTest, LeavesABrokenGlobalFileAsItIs)
{
    const std::string broken = GlobalFile({{4, 9}, {8, 8}}).substr(0, 32 + 10); // two words and a half
    Write("global", broken);
    const VK_GLOBAL_SETTINGS& settings = *configuration.getGlobalSettings(true);
    EXPECT_EQ(settings.value_4, 9U);
    EXPECT_EQ(settings.value_8, 20U) << "cut in the middle";
    EXPECT_EQ(settings.value_28, 1000U);
    EXPECT_EQ(Read("global"), broken);

    std::filesystem::remove(root / "config/global");
    std::filesystem::create_directory(root / "config/global");
    EXPECT_EQ(configuration.getGlobalSettings(true)->value_4, 200U);
    EXPECT_TRUE(std::filesystem::is_directory(root / "config/global"));
}

TEST_F(ConfigurationTest, KeepsTheSystemAttendantsRecord)
{
    EXPECT_EQ(configuration.getSystemAttendantSettings(true)->bytes[0], 0);
    configuration.getSystemAttendantSettings(false)->bytes[1427] = 0x5a;
    ASSERT_TRUE(configuration.setSystemAttendantSettings());
    EXPECT_EQ(Read("sysinfo").size(), 1428U);
    configuration.getSystemAttendantSettings(false)->bytes[1427] = 0;
    EXPECT_EQ(configuration.getSystemAttendantSettings(true)->bytes[1427], 0x5a);
}

TEST_F(ConfigurationTest, WaitsForFilesThatAnotherProcessHasLocked)
{
    Write("dir", "spool_dir:\t\t/var/spool\n");
    vktest::LockingProcess writer(root / "config/dir");
    std::string spool;
    std::thread reader([&] { spool = configuration.getDirectory(true)->spool_dir; });
    writer.Release();
    reader.join();
    EXPECT_EQ(spool, "/var/spool");
}

TEST_F(ConfigurationTest, ReadsDeviceStatuses)
{
    VK_DEVICE_STATUS_LIST list, copy;
    EXPECT_FALSE(configuration.getDeviceStatusList(&list));
    const std::string longName(80, 'n');
    Write("device_status_config", "status_name: lost\nstatus_code:\t1\nstatus_name:\tOn duty\nstatus_desp: reachable\n"
                                  "status_disabled: OFF\nallow_cover_by: 1\n\nstatus_code: 2\nstatus_name: " +
                                      longName + "\nstatus_disabled: ON\nallow_cover_by: 0\nforce_cover_by:1\n");
    ASSERT_TRUE(configuration.getDeviceStatusList(&list));
    DuplicateDeviceStatusList(&copy, &list);
    EmptyDeviceStatusList(&list);
    ASSERT_EQ(copy.count, 2);
    EXPECT_EQ(Shown(vk::kDeviceStatusFields, copy.list[0]), "1|On duty|reachable|0|1|0|");
    EXPECT_EQ(Shown(vk::kDeviceStatusFields, copy.list[1]), "2|" + longName.substr(0, 50) + "||1|0|1|");
    EmptyDeviceStatusList(&copy);
}

TEST_F(ConfigurationTest, ReadsSerialPorts)
{
    VK_TGATE_PORTINFO_HEADER ports, copy;
    EXPECT_FALSE(VKConfiguration::GetPorts(root / "config", &ports));
    Write("ports", "<ports><port><serial_port>/dev/ttyS0</serial_port><init_string>ATZ</init_string>"
                   "<baud_rate>9600</baud_rate><data_bits>8</data_bits><stop_bits>1</stop_bits><parity>none</parity>"
                   "<reset_delay>5</reset_delay><max_idle_time>60</max_idle_time><is_leased>true</is_leased>"
                   "<flow_control>hardware</flow_control></port><other/><port><baud_rate>x</baud_rate></port></ports>");
    for (const std::string& path : {root / "config", root / "config/ports"}) {
        ASSERT_TRUE(VKConfiguration::GetPorts(path, &ports));
        ASSERT_EQ(ports.count, 2);
        DuplicatePortInfo(&copy, &ports);
        EXPECT_EQ(Shown(vk::kPortFields, copy.list[0]), "/dev/ttyS0|ATZ||9600|8|1|none|5|60|1|hardware|");
        EXPECT_EQ(Shown(vk::kPortFields, copy.list[1]), "|||0|0|0||0|0|0||");
    }
    Write("ports", "<ports><port></ports>");
    EXPECT_FALSE(VKConfiguration::GetPorts(root / "config", &ports));
    EXPECT_EQ(ports.count, 0);
    EmptyPortInfo(&copy);
}

TEST_F(ConfigurationTest, HelpsWithPathsAndFiles)
{
    char path[64];
    EXPECT_STREQ(VKConfiguration::createPath(path, "/a", "b"), "/a/b");
    EXPECT_EQ(VKConfiguration::createPath(std::string("/a/"), std::string("b")), "/a/b");
    char windows[] = "c:\\a\\b";
    VKConfiguration::pathFilter(windows);
    EXPECT_STREQ(windows, "c:/a/b");

    root.Write("target", "old");
    EXPECT_FALSE(VKConfiguration::setFileName(root / "target", root / "missing"));
    EXPECT_EQ(root.Read("target"), "old");
    root.Write("source", "new");
    EXPECT_TRUE(VKConfiguration::setFileName(root / "target", root / "source"));
    EXPECT_EQ(root.Read("target"), "new");
    EXPECT_FALSE(VKioFile::IsExisting(root / "source"));

    EXPECT_FALSE(configuration.isBackupInProgress());
    root.Write("temp/backupflag", "");
    EXPECT_TRUE(configuration.isBackupInProgress());
    EXPECT_EQ(VKConfiguration::getDeviceTypeName(4), "Escalation");
    for (const unsigned int unknown : {0U, 5U, 9U})
        EXPECT_EQ(VKConfiguration::getDeviceTypeName(unknown), "");
}

} // namespace
