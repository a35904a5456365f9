#include <gmock/gmock.h>

#include "BackendDatabase.h"
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
    VKActiveMxpClientTest()
    {
        clients.reset(VKDBiActiveMxpClient::CreateInstance(&system));
    }

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

    std::unique_ptr<VKDBiActiveMxpClient> clients;
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
    VKActiveMxpClientInfo added = Client("Key-ABC'", "Ann's pager", 5000000000, VKActivationModeAdvanced);
    added.is_suspended = true;
    added.suspended_time = 6000000000;
    added.ip_address = "10.1.2.3";
    added.platform = "Zürich \\ % {}";
    added.activation_user_name = "ann";
    ASSERT_TRUE(clients->Add(&added));
    const auto expectSame = [&] {
        VKActiveMxpClientInfo read;
        ASSERT_TRUE(clients->GetByID(added.id, &read));
        vk::ForEachField(vk::kActiveMxpClientTable.fields,
                         [&](const auto& field) { EXPECT_EQ(field.of(read), field.of(added)) << field.name; });
    };
    expectSame();
    added.is_suspended = false;
    added.platform = "";
    ASSERT_TRUE(clients->Modify(&added));
    ASSERT_TRUE(clients->UpdateAuthorization(added.id, true));
    ASSERT_TRUE(clients->UpdateActivationMode(added.id, VKActivationModeBasic));
    added.is_authorized = true;
    added.active_mode = VKActivationModeBasic;
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
    const std::unique_ptr<VKDBiReceiver> receivers(VKDBiReceiver::CreateInstance(&system));
    VK_RECEIVER ann;
    vk::SetText(ann.name, "Ann", "name");
    vk::SetText(ann.pin, "ann@example.org", "pin");
    vk::SetText(ann.first_name, "Anna", "first_name");
    vk::SetText(ann.last_name, "O'Hara", "last_name");
    ASSERT_TRUE(receivers->Add(&ann, false));

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
    std::unique_ptr<vk::SqlActiveMxpClient> store;
    if (OnFiles())
        store = std::make_unique<VKSQLite3ActiveMxpClient>();
    else
        store = std::make_unique<VKRDBActiveMxpClient>();
    ASSERT_TRUE(store->Initialize(&system));
    std::vector<VKActiveMxpClientInfo> moved = {Client("secret-key", "a", 1)};
    moved[0].id = 70;
    ASSERT_TRUE(store->ConvertRecords(moved));
    EXPECT_EQ(Add(Client("k", "b", 2)), 71u);
    const std::string error = ErrorOf([&] { store->ConvertRecords(moved); });
    EXPECT_THAT(error, testing::HasSubstr("Execution of insert query failed."));
    EXPECT_THAT(error, testing::Not(testing::HasSubstr("secret-key")));
}
