#include "DatabaseCommands.h"

#include "AdminOutput.h"
#include "AdminRoot.h"
#include "VKConfiguration.h"
#include "VKDBexception.h"
#include "VKSchema.h"
#include "VKStoreCopy.h"

#include <cstdio>
#include <unistd.h>

namespace vk {

namespace {

constexpr const char* kColumns[] = {"family", "table", "added", "present"};

StorePlace PlaceOf(const Arguments& arguments, const char* option)
{
    UseRoot(arguments.Text(option), option);
    VKConfiguration& configuration = *VKConfiguration::getVKConfiguration();
    VKDBsystem system;
    system.OpenSdb(configuration.getConfDirectory(false), configuration.getRootDirectory(false), nullptr, nullptr, 0,
                   nullptr);
    StorePlace place{*configuration.getDataSource(false), system.GetDataConfigDir()};
    system.Close();
    return place;
}

/// On a terminal only: whoever keeps the output wants the counts, not the way there.
void ShowProgress(const CopiedTable& table)
{
    if (isatty(STDERR_FILENO) != 0)
        std::fprintf(stderr, "%s: %s: %ld\n", table.family, table.table, table.added + table.present);
}

} // namespace

int PrintSchema(const Arguments& arguments)
{
    const std::string dialect = arguments.Text("--dialect");
    for (const std::string& statement : SchemaStatements(*RelationalDialect(dialect)))
        std::printf("%s;\n", statement.c_str());
    return kExitOk;
}

int ConvertRoot(const Arguments& arguments)
{
    const StorePlace from = PlaceOf(arguments, "--from");
    const StorePlace to = PlaceOf(arguments, "--to");
    if (from.configDirectory == to.configDirectory)
        throw UsageError("--from and --to name the same root");
    std::vector<ShownRecord> shown;
    try {
        for (const CopiedTable& table : CopyStores(from, to, ShowProgress))
            shown.push_back({{"family", table.family},
                             {"table", table.table},
                             {"added", Json::Int64(table.added)},
                             {"present", Json::Int64(table.present)}});
    } catch (const VKDBexception& failure) {
        if (failure.GetErrorCode() == DbError::RuleOrConstraint)
            return Refused(failure.GetMsg());
        throw;
    }
    PrintTable(shown, kColumns, arguments.Has("--json"));
    return kExitOk;
}

} // namespace vk
