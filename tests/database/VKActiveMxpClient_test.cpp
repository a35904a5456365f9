#include <gmock/gmock.h>

#include "BackendDatabase.h"
#include "RecordColumns.h"
#include "VKDBiActiveMxpClient.h"
#include "VKRDBActiveMxpClient.h"
#include "VKReceiver.h"
#include "VKSQLite3ActiveMxpClient.h"

namespace {

VKActiveMxpClientInfo Client(const std::string& key, const std::string& name, long created,
                             VKActivationMode mode = VKActivationModeBasic)
{
    VKActiveMxpClientInfo client;
    client.activation_key = key;
    client.client_name = name;
    client.created_time = created;
    client.active_mode = mode;
    return client;
}

class VKActiveMxpClientTest : public BackendDatabase
{
protected:
    unsigned long Add(VKActiveMxpClientInfo client)
    {
        EXPECT_TRUE(clients->Add(&client));
        return client.id;
    }
    std::string View()
    {
        std::vector<VKActiveMxpClientView> view;
        EXPECT_TRUE(clients->GetForView(&view));
        std::string names;
        for (const VKActiveMxpClientView& client : view)
            names += client.client_name + client.GetShownName() + ";";
        return names;
    }

    std::unique_ptr<VKDBiActiveMxpClient> clients{VKDBiActiveMxpClient::CreateInstance(&system)};
};

VK_ON_BOTH_BACKENDS(VKActiveMxpClientTest);

} // namespace

TEST(VKActiveMxpClientTable, ColumnsAreAsOtherProgramsKnowThem)
{
    EXPECT_STREQ(VKSQLite3ActiveMxpClient::tTableDesc[0].columns,
                 "id INTEGER PRIMARY KEY AUTOINCREMENT, activation_key VARCHAR(128) NOT NULL, is_suspended BOOLEAN, "
                 "created_time INTEGER, suspended_time INTEGER, ip_address VARCHAR(20), platform VARCHAR(100), "
                 "client_name VARCHAR(100), active_mode INTEGER NOT NULL, is_authorized BOOLEAN, activation_user_name "
                 "VARCHAR(100)");
    EXPECT_EQ(VKDBiActiveMxpClient::GetActivationMode("Basic"), VKActivationModeBasic);
    EXPECT_EQ(VKDBiActiveMxpClient::GetActivationMode("Advanced"), VKActivationModeAdvanced);
    EXPECT_EQ(VKDBiActiveMxpClient::GetActivationMode("None"), VKActivationModeNone);
    EXPECT_EQ(VKDBiActiveMxpClient::GetActivationModeString(VKActivationModeAdvanced), "Advanced");
}

TEST_P(VKActiveMxpClientTest, EveryFieldComesBackAndClientsAreFound)
{
    const auto& fields = vk::kActiveMxpClientTable.fields;
    VKActiveMxpClientInfo added;
    FillColumns(fields, added);
    added.activation_key = "Key-ABC'";
    added.client_name = "Ann's pager";
    added.created_time = 5000000000;
    added.active_mode = VKActivationModeAdvanced;
    ASSERT_TRUE(clients->Add(&added));
    const auto expectSame = [&] {
        VKActiveMxpClientInfo read;
        ASSERT_TRUE(clients->GetByID(added.id, &read));
        EXPECT_EQ(AllColumns(fields, read), AllColumns(fields, added));
    };
    expectSame();
    added.is_suspended = !added.is_suspended;
    added.platform = "";
    ASSERT_TRUE(clients->Modify(&added));
    added.is_authorized = !added.is_authorized;
    added.active_mode = VKActivationModeBasic;
    ASSERT_TRUE(clients->UpdateAuthorization(added.id, added.is_authorized));
    ASSERT_TRUE(clients->UpdateActivationMode(added.id, added.active_mode));
    expectSame();

    VKActiveMxpClientInfo read;
    EXPECT_TRUE(clients->GetByActivationKey("kEY-abc'", &read));
    EXPECT_EQ(read.id, added.id);
    EXPECT_TRUE(clients->GetByName("Ann's pager", &read));
    EXPECT_FALSE(clients->GetByName("ann's pager", &read)) << "names match in case";
    EXPECT_EQ(read.id, 0u);
    EXPECT_TRUE(clients->Delete(added.id));
    EXPECT_FALSE(clients->Delete(added.id) || clients->Modify(&added) || clients->UpdateAuthorization(added.id, true) ||
                 clients->UpdateActivationMode(added.id, VKActivationModeBasic) || clients->GetByID(added.id, &read));
}

TEST_P(VKActiveMxpClientTest, TheViewJoinsTheReceiversAndIsFilteredSortedAndPaged)
{
    VK_RECEIVER ann;
    SetColumns(vk::kReceiverTable.fields, ann, {{"name", "Ann"}, {"pin", "ann@example.org"}, {"first_name", "Anna"},
                                                {"last_name", "O'Hara"}});
    ASSERT_TRUE(std::unique_ptr<VKDBiReceiver>(VKDBiReceiver::CreateInstance(&system))->Add(&ann, false));

    VKActiveMxpClientInfo enrolled = Client("k1", "b%", 300);
    enrolled.activation_user_name = "Ann";
    Add(enrolled);
    Add(Client("k2", "A1", 100, VKActivationModeAdvanced));
    Add(Client("k3", "a2", 200));
    EXPECT_EQ(View(), "A1;a2;b%Ann ( Anna, O'Hara );");
    clients->SetSort(false);
    EXPECT_EQ(View(), "b%Ann ( Anna, O'Hara );a2;A1;");
    clients->ClearSort();
    std::vector<VKActiveMxpClientInfo> all;
    EXPECT_TRUE(clients->Get(&all));
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].client_name, "A1");

    const struct
    {
        const char* name;
        long from;
        long to;
        const char* shown;
    } filters[] = {{"a", 0, 0, "A1;a2;"},  {"B%", 0, 0, "b%Ann ( Anna, O'Hara );"},
                   {"%", 0, 0, ""},        {"*", 100, 200, "A1;a2;"},
                   {"a", 150, 250, "a2;"}, {"a", 200, 200, "A1;a2;"},
                   {"a", 0, 150, "A1;a2;"}};
    for (const auto& row : filters) {
        clients->SetFilter(row.name, row.from, row.to);
        EXPECT_EQ(View(), row.shown) << row.name << row.from;
    }
    clients->ClearFilter();
    clients->SetFilter(2, 2);
    EXPECT_EQ(View(), "b%Ann ( Anna, O'Hara );");
    EXPECT_EQ(clients->GetPageCount(), 2);
    EXPECT_EQ(clients->GetTotalRecords(), 3);
    EXPECT_EQ(clients->GetTotalRecordCount(VKActivationModeBasic), 2);
    EXPECT_EQ(clients->GetTotalRecordCount(VKActivationModeAdvanced), 1);
    EXPECT_EQ(clients->GetTotalRecordCount(VKActivationModeNone), 3);
}

TEST_P(VKActiveMxpClientTest, RecordsFromAnotherBackendKeepTheirIds)
{
    const auto store = MakeStore<vk::SqlActiveMxpClient, VKSQLite3ActiveMxpClient, VKRDBActiveMxpClient>();
    std::vector<VKActiveMxpClientInfo> moved = {Client("secret-key", "a", 1)};
    moved[0].id = 70;
    ASSERT_TRUE(store->ConvertRecords(moved));
    EXPECT_EQ(Add(Client("k", "b", 2)), 71u);
    const std::string error = ErrorOf([&] { store->ConvertRecords(moved); });
    EXPECT_THAT(error, testing::HasSubstr("Execution of insert query failed."));
    EXPECT_THAT(error, testing::Not(testing::HasSubstr("secret-key")));
}
