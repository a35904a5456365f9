// The one place that knows which writers there are. It stands apart from the interface, so that the interface needs to
// know none of them.
#include "VKsysEventLogFileWriter.h"
#include "VKsysEventLogWriterInterface.h"

#include <mutex>

namespace {

struct Factories
{
    std::mutex lock;
    std::map<int, VKsysEventLogWriterInterface::Factory> byType = {
        {VKsysEventLogWriterInterface::FILE_WRITER,
         [] { return std::unique_ptr<VKsysEventLogWriterInterface>(std::make_unique<VKsysEventLogFileWriter>()); }},
    };
};

Factories& TheFactories()
{
    static Factories factories;
    return factories;
}

} // namespace

VKsysEventLogWriterInterface* VKsysEventLogWriterInterface::CreateInstance(WriterTypes type)
{
    Factory factory = nullptr;
    {
        Factories& factories = TheFactories();
        const std::lock_guard<std::mutex> guard(factories.lock);
        const auto found = factories.byType.find(type);
        if (found != factories.byType.end())
            factory = found->second;
    }
    return factory ? factory().release() : nullptr;
}

void VKsysEventLogWriterInterface::RegisterFactory(WriterTypes type, Factory factory)
{
    Factories& factories = TheFactories();
    const std::lock_guard<std::mutex> guard(factories.lock);
    factories.byType[type] = factory;
}
