#pragma once

/// How the database is opened, as the file "datasource" tells.
struct VK_DATA_SOURCE
{
    int database_type = 0; ///< 1 the embedded database, 2 a relational one over ODBC, 0 no word that is known
    bool oracle = false;
    char connect_string[500] = {};
    char user[55] = {};      ///< empty for the embedded database, as is the password
    char password[255] = {}; ///< a secret: for no log
    bool uses_dsn = true;    ///< the connect string names a data source of the driver manager
};
