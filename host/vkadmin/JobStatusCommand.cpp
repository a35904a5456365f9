#include "JobStatusCommand.h"

#include "AdminOutput.h"
#include "AdminRoot.h"
#include "RecordForm.h"
#include "VKMsgStatusManager.h"

namespace vk {

int ShowJobStatus(const Arguments& arguments)
{
    static constexpr ColumnWords kWords[] = {{"status", kMsgStatusTexts}};

    UseRoot(arguments);
    VKMsgStatusManager store;
    if (!store.Initialize())
        throw std::runtime_error("the store of job states cannot be opened: " + store.GetLastError());
    const std::string& job = arguments.Operands().front();
    VKMsgStatusManager::VKMessageStatusData data;
    if (!store.GetByJobID(job, data))
        return Refused(store.GetLastError().empty() ? "there is no state of job '" + job + "'" : store.GetLastError());
    PrintRecord(ShownValues(kMsgStatusFields, kWords, {}, data), arguments.Has("--json"));
    return kExitOk;
}

} // namespace vk
