#include "DriverSession.h"

#include "TextLine.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace vk {

std::string CheckedRoot(const Arguments& arguments)
{
    const std::string given = arguments.Text("--root");
    std::error_code error;
    const auto root = std::filesystem::canonical(given, error);
    if (error)
        throw InputError("--root: " + given + ": " + error.message());
    for (const char* folder : {"config", "temp", "logs"}) {
        const std::string path = root / folder;
        if (!std::filesystem::is_directory(path, error))
            throw InputError("--root: " + path + " is no directory; vkadmin --root " + given + " init makes a root");
        if (access(path.c_str(), R_OK | X_OK) != 0)
            throw InputError("--root: " + path + ": " + std::generic_category().message(errno));
    }
    return root;
}

DriverSession::DriverSession(const Arguments& arguments)
{
    const std::string root = CheckedRoot(arguments);
    const std::string logFile = root + "/logs/vkmessenger.log";
    m_logger = std::make_unique<HostLogger>(
        "vkmessenger", logFile, CodeOfText(kLogLevelWords, arguments.Text("--log-level"), VKLogInterface::INFO));
    // The driver's library finds its installation by itself; this is how it learns of another than the default one.
    setenv("VKMXP_ROOT", root.c_str(), 1);
    m_library = std::make_unique<DriverLibrary>(arguments.Text("--driver", DriverLibrary::DefaultPath()));
    Configure(logFile);
}

void DriverSession::Configure(const std::string& logFile)
{
    VKProtocolDriverInterface& driver = m_library->Driver();
    driver.m_pobjLogger = m_logger.get();
    driver.m_pobjReportsMngr = nullptr;
    driver.m_pobjMsgFileQueue = &m_returned;
    m_exchange = std::make_unique<DriverExchange>(driver, m_returned);
    std::map<std::string, std::string> settings;
    VKMessengerInstConfBasic messenger;
    if (driver.Configure(settings) && driver.Setup(&messenger))
        return;
    m_exchange->End();
    const std::string why = m_logger->TakeErrors();
    throw std::runtime_error("the driver could not be configured: " + (why.empty() ? "see " + logFile : why));
}

void DriverSession::TellErrors(const std::string& about)
{
    const std::string errors = OneLine(m_logger->TakeErrors());
    if (!errors.empty())
        std::fprintf(stderr, "vkmessenger: %s: %s\n", Printable(about).c_str(), errors.c_str());
}

} // namespace vk
