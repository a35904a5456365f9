#pragma once

#include <string>
#include <tuple>

#include "VKField.h"
#include "VKMXPmBase.h"
#include "VKMXPmMarks.h"
#include "VKMXPmRows.h"

namespace vk::mxp {

/// A packet whose `parameters` and `result` are one field table each. The packet gives its element's name, `kElement`,
/// and its tables, `ParamFields()` and, unless it answers with nothing, `ResultFields()`, in the order of the wire;
/// writer, reader and required-field test are walks over them, which VKMXPmFields.h defines. A packet instantiates its
/// walks in its own source.
template <class Packet> class TablePacket : public VKMXPmBase
{
public:
    const char* GetName() const override;
    std::string GenerateParamXML() const override;
    bool ParseParamXML(XmlReaderWriter::Node& parameters) override;
    bool ValidateParams() const override;
    std::string GenerateResponseXML() const override;

    /// False when the packet reads its result and there is none of type XML.
    bool ParseResponseXML(XmlReaderWriter::Node& result) override;

    static constexpr std::tuple<> ResultFields() { return {}; }

    static constexpr bool kServerSends = false; ///< who sends requests of this kind; the other side responds

    /// Not so in a packet that is built for the server alone: its parameters are read but never written, and its result
    /// is written but never read.
    static constexpr bool kWritesParams = true;
    static constexpr bool kReadsResult = true;
};

} // namespace vk::mxp
