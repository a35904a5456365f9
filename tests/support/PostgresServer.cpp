#include "PostgresServer.h"

#include "FreePort.h"
#include "RunningProgram.h"

#include <pwd.h>
#include <stdexcept>
#include <unistd.h>

namespace {

std::string ProgramFolder()
{
    for (const auto& version : std::filesystem::directory_iterator("/usr/lib/postgresql"))
        if (std::filesystem::exists(version.path() / "bin/postgres"))
            return (version.path() / "bin").string() + "/";
    throw std::runtime_error("no PostgreSQL server is installed");
}

/// How a command of the server's is run: by its user when the tests run as root.
std::string AsServerUser() { return geteuid() == 0 ? "setpriv --reuid=postgres --regid=postgres --clear-groups " : ""; }

} // namespace

PostgresServer& PostgresServer::Get()
{
    static PostgresServer server;
    return server;
}

PostgresServer::PostgresServer() : m_port(FreePort())
{
    if (const passwd* user = getpwnam("postgres"); user != nullptr && geteuid() == 0)
        if (chown(m_dir.Path().c_str(), user->pw_uid, user->pw_gid) != 0)
            throw std::system_error(errno, std::generic_category(), m_dir.Path().string());
    m_dir.Write("odbcinst.ini", "[PostgreSQL]\nDriver=psqlodbca.so\n");
    m_dir.Write("odbc.ini", std::string("[") + kSource + "]\nDriver=PostgreSQL\nServername=127.0.0.1\nPort=" +
                                std::to_string(m_port) + "\nDatabase=postgres\nUsername=postgres\n" +
                                "ConnSettings=SET client_encoding TO 'UTF8'\nMaxVarcharSize=4000\n");
    // The driver keeps a few bytes for each connection to itself; the programs that tests start have no other way to
    // know.
    setenv("LSAN_OPTIONS", ("print_suppressions=0:suppressions=" + m_dir.Write("leaks", "leak:psqlodbca.so\n")).c_str(),
           1);
    setenv("ODBCSYSINI", m_dir.Path().c_str(), 1);
    setenv("ODBCINI", (m_dir / "odbc.ini").c_str(), 1);
    MakeData();
    Start();
}

/// The data of a new server. Each test program has one of its own, so the first of a build folder leaves a copy for
/// those after it: making it anew takes a second each time.
void PostgresServer::MakeData()
{
    namespace fs = std::filesystem;
    const std::string kept =
        VK_BUILD_DIR "/postgres" + fs::path(ProgramFolder()).parent_path().parent_path().filename().string();
    const std::string data = m_dir / "data";
    if (fs::exists(kept) && Copy(kept, data))
        return;
    fs::remove_all(data);
    if (Run("initdb", "-D " + data + " -U postgres -A trust -E UTF8 --locale=C --no-sync", "initdb.out") != 0)
        throw std::runtime_error("initdb failed: " + m_dir.Read("initdb.out"));
    const std::string own = kept + "." + std::to_string(getpid());
    std::error_code lost; // another program was first, or the folder cannot be written: nothing is missing then
    if (Copy(data, own))
        fs::rename(own, kept, lost);
    fs::remove_all(own, lost);
}

/// With the owners of the files.
bool PostgresServer::Copy(const std::string& from, const std::string& to) const
{
    return std::system(("cp -a '" + from + "' '" + to + "' 2>" + (m_dir / "copy.out")).c_str()) == 0;
}

PostgresServer::~PostgresServer() { Stop(); }

int PostgresServer::Run(const std::string& program, const std::string& arguments, const char* output) const
{
    return std::system(
        ("cd / && " + AsServerUser() + ProgramFolder() + program + " " + arguments + " >" + (m_dir / output) + " 2>&1")
            .c_str());
}

void PostgresServer::MakeTables() const
{
    static const std::string schema = ProgramRun::Of("vkadmin", {"schema", "--dialect", "postgresql"}).out;
    Drop();
    if (const std::string trouble = RunScript(schema); schema.empty() || !trouble.empty())
        throw std::runtime_error("the tables cannot be made: " + trouble);
}

std::string PostgresServer::RunScript(const std::string& statements) const
{
    m_dir.Write("script.sql", statements);
    const std::string line = "psql -q -v ON_ERROR_STOP=1 -h 127.0.0.1 -p " + std::to_string(m_port) +
                             " -U postgres postgres -c 'SET client_min_messages TO warning' <" +
                             (m_dir / "script.sql") + " -f - >" + (m_dir / "script.out") + " 2>&1";
    const int status = std::system(line.c_str());
    const std::string out = m_dir.Read("script.out");
    return status == 0 ? out : out + "status " + std::to_string(status);
}

void PostgresServer::Start()
{
    const std::string command = "cd / && exec " + AsServerUser() + ProgramFolder() + "postgres -D " + (m_dir / "data") +
                                " -h 127.0.0.1 -p " + std::to_string(m_port) + " -k '' -F";
    m_process.emplace(std::vector<std::string>{"/bin/sh", "-c", command}, m_dir / "server.out", m_dir / "server.out");
    const std::string ready = "-q -h 127.0.0.1 -p " + std::to_string(m_port);
    const auto answers = [&] { return Run("pg_isready", ready, "ready.out") == 0; };
    if (!Until([&] { return m_process->HasEnded() || answers(); }, std::chrono::seconds(30)) || m_process->HasEnded())
        throw std::runtime_error("postgres did not start: " + m_dir.Read("server.out"));
}

void PostgresServer::Stop()
{
    m_process->End(SIGINT); // the server's word for: at once, but in order
}

/// The distribution's driver keeps a few bytes for each connection to itself.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:psqlodbca.so\n"; }
