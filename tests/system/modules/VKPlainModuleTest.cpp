#include "RecordingLogger.h"
#include "TempDir.h"
#include "VKLog.h"
#include "VKPlainModule.h"
#include "VKioDirectory.h"
#include "VKlibrary.h"
#include "VKsystemResource.h"
#include "VKsysEventLogInterface.h"

#include <gtest/gtest.h>

namespace {

class Module : public VKPlainModule
{
public:
    Module(std::string name, bool required, bool starts = true)
        : m_name(std::move(name)), m_required(required), m_starts(starts)
    {
    }
    bool InitializeSpecial() override { return m_starts; }
    std::string GetRunningModuleName() override { return m_name; }
    bool IsLoggerRequired() override { return m_required; }
    using VKPlainModule::GetLogger;

private:
    std::string m_name;
    bool m_required;
    bool m_starts;
};

TEST(VKPlainModule, TakesTheLoggerItIsGivenAndRefusesToStartWhenItsOwnSetUpFails)
{
    vktest::RecordingLogger logger;
    for (const bool required : {true, false}) {
        Module module("given", required);
        EXPECT_TRUE(module.Initialize(&logger, ""));
        EXPECT_EQ(module.GetLogger(), &logger);
        EXPECT_TRUE(module.Finalize());
        EXPECT_EQ(module.GetLogger(), &logger) << "a logger of someone else is left alone";
        EXPECT_FALSE(Module("refuses", required, false).Initialize(&logger, ""));
    }
}

TEST(VKPlainModule, MakesItsOwnLoggerOnlyWhenItNeedsOneAndCan)
{
    TempDir root;
    VKioDirectory::CreateFullPath(root / "config");
    VKioDirectory::CreateFullPath(root / "logs");

    for (const auto& [required, directory] :
         {std::pair(false, root / "config"), {true, ""}, {true, root / "no/config"}}) {
        Module module("plain probe without", required);
        EXPECT_TRUE(module.Initialize(nullptr, directory));
        EXPECT_EQ(module.GetLogger(), nullptr) << directory;
    }

    Module own("plain probe", true);
    ASSERT_TRUE(own.Initialize(nullptr, root / "config"));
    ASSERT_NE(own.GetLogger(), nullptr);
    VK_LOG_WARN(own.GetLogger(), "the module speaks");
    EXPECT_NE(root.Read("logs/plain_probe.txt").find("the module speaks"), std::string::npos);
    own.Finalize();
    EXPECT_EQ(own.GetLogger(), nullptr);
    delete VKsysEventLogInterface::getVKsysEventLogInterfaceObject(std::string("plain probe"));
}

TEST(VKlibrary, StartsAndEndsAnyNumberOfTimes)
{
    const TempDir site;
    site.Write("libresource.res", "GREETING   hello\n");
    EXPECT_TRUE(InitialLib(site.Path()));
    EXPECT_EQ(vk::LibraryPath(), site.Path());
    EXPECT_EQ(vk::LibraryResource().GetString("GREETING"), "hello");
    EXPECT_TRUE(CloseLib());
    EXPECT_TRUE(InitialLib("/opt/site"));
    EXPECT_EQ(vk::LibraryPath(), "/opt/site");
    EXPECT_EQ(vk::LibraryResource().GetString("GREETING"), "hello") << "loaded once";
    EXPECT_TRUE(CloseLib());
    EXPECT_TRUE(InitialLib());
    EXPECT_TRUE(CloseLib());
}

} // namespace
