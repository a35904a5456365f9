#pragma once

#include <string>

#include "VKField.h"
#include "VKMXPmBase.h"
#include "VKMXPmMarks.h"

namespace vk {

/// A packet whose `parameters` are one field table and whose `result` is empty. The packet gives its element's name,
/// `kElement`, and its table, `ParamFields()`, in the order of the wire; writer, reader and required-field test are
/// walks over the table, which VKMXPmFields.h defines. A packet instantiates its walks in its own source.
template <class Packet> class TablePacket : public VKMXPmBase
{
public:
    const char* GetName() const override;
    std::string GenerateParamXML() const override;
    bool ParseParamXML(XmlReaderWriter::Node& parameters) override;
    bool ValidateParams() const override;
    std::string GenerateResponseXML() const override;
    bool ParseResponseXML(XmlReaderWriter::Node& result) override;
};

} // namespace vk
