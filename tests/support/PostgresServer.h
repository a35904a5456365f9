#pragma once

#include "ChildProcess.h"
#include "TempDir.h"

#include <optional>
#include <string>

/// A private PostgreSQL server on loopback for tests: its own data folder, run by the unprivileged user "postgres" (the
/// server refuses root), reached as the ODBC data source "vktest" through private odbc.ini and odbcinst.ini files.
/// Throws std::runtime_error with the server's own words when it does not come up.
class PostgresServer
{
public:
    /// The one of this test program, started on first use and stopped with it.
    static PostgresServer& Get();

    PostgresServer();
    ~PostgresServer();
    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;

    /// Returns when it takes connections; one that was stopped comes back on the same port.
    void Start();
    /// Cuts all connections and returns when it has ended.
    void Stop();

    /// Takes all tables away, and makes those of an installation, new and empty, as an administrator does.
    void MakeTables() const;
    /// Takes all tables away.
    void Drop() const { RunScript("DROP SCHEMA public CASCADE; CREATE SCHEMA public;"); }
    /// Runs statements as the server's own client does; gives back what it complains about.
    std::string RunScript(const std::string& statements) const;

    static constexpr const char* kSource = "vktest";

private:
    void MakeData();
    bool Copy(const std::string& from, const std::string& to) const;
    int Run(const std::string& program, const std::string& arguments, const char* output) const;

    TempDir m_dir;
    int m_port = 0;
    std::optional<ChildProcess> m_process;
};
