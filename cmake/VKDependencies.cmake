# Everything outside this system comes from the distribution.
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
find_package(OpenSSL 3 REQUIRED)
find_package(SQLite3 REQUIRED)
pkg_check_modules(EXPAT REQUIRED IMPORTED_TARGET expat)
pkg_check_modules(PUGIXML REQUIRED IMPORTED_TARGET pugixml)
pkg_check_modules(JSONCPP REQUIRED IMPORTED_TARGET jsoncpp)
pkg_check_modules(GLOOX REQUIRED IMPORTED_TARGET gloox)
pkg_check_modules(PCRECPP REQUIRED IMPORTED_TARGET libpcrecpp)

set(VK_SYSTEM_LIBS Threads::Threads OpenSSL::SSL OpenSSL::Crypto PkgConfig::EXPAT PkgConfig::PUGIXML PkgConfig::JSONCPP)
set(VK_DATABASE_LIBS SQLite::SQLite3 PkgConfig::PCRECPP)
set(VK_GATEWAY_LIBS OpenSSL::SSL PkgConfig::GLOOX)
