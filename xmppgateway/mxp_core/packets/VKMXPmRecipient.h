#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "VKMXPmRows.h"

/// One entry of the directory, a receiver or a group, as two packets carry it. Its attributes stand in double quotes,
/// unlike the rest of the protocol, on purpose.
struct VKMXPmRecipient
{
    std::int32_t m_iID = 0;
    std::int32_t m_iType = 0;
    std::string m_strName;
    std::string m_strFirstName;
    std::string m_strLastName;
    std::string m_strDescription;
    std::string m_strDepartment;
    std::vector<std::string> m_vecAttributes;
    std::string m_strProtocolType;
    std::string m_strProtocolValue;
    bool m_bTwoWay = false;
    bool m_bDevice = false;
    bool m_bSecured = false;
    bool m_bNum = false;
    bool m_bStatusEnabled = false;
    std::uint32_t m_tDisabledFrom = 0; ///< seconds since the epoch
    std::uint32_t m_tDisabledTo = 0;   ///< seconds since the epoch
    std::string m_strCoverBy;

    static constexpr auto Fields()
    {
        using R = VKMXPmRecipient;
        using namespace vk::mxp;
        constexpr auto enabled = InAttribute{"enabled"};
        return vk::Fields(
            Field<&R::m_iID>("id"), Field<&R::m_iType>("type"), Field<&R::m_strName>("name"),
            Field<&R::m_strFirstName>("first-name"), Field<&R::m_strLastName>("last-name"),
            Field<&R::m_strDescription>("description"), Field<&R::m_strDepartment>("department"),
            Group("attributes", vk::Fields(Field<&R::m_vecAttributes>("attribute", Items{}))),
            Group("protocol", vk::Fields(Field<&R::m_strProtocolType>("type", Attribute{}, DoubleQuoted{}),
                                         Field<&R::m_strProtocolValue>("protocol", Contents{}))),
            Group("properties", vk::Fields(Flag<&R::m_bTwoWay>("two-way", enabled, DoubleQuoted{}),
                                           Flag<&R::m_bDevice>("device", enabled, DoubleQuoted{}),
                                           Flag<&R::m_bSecured>("secured", enabled, DoubleQuoted{}),
                                           Flag<&R::m_bNum>("num", enabled, DoubleQuoted{}))),
            Group("status", vk::Fields(Flag<&R::m_bStatusEnabled>("enabled", Attribute{}, DoubleQuoted{}),
                                       Group("disabled",
                                             vk::Fields(Field<&R::m_tDisabledFrom>("from", Attribute{}, DoubleQuoted{}),
                                                        Field<&R::m_tDisabledTo>("to", Attribute{}, DoubleQuoted{})),
                                             Unless{&R::m_bStatusEnabled}),
                                       Field<&R::m_strCoverBy>("cover-by", Unless{&R::m_bStatusEnabled}))));
    }
};

/// What a client wants to be told of each recipient. Read only.
struct VKMXPmRecipientDetails
{
    bool m_bGetFirstName = false;
    bool m_bGetLastName = false;
    bool m_bGetDescription = false;
    bool m_bGetAttributes = false;
    bool m_bGetProperties = false;
    bool m_bGetStatus = false;
    bool m_bGetProtocol = false;
    bool m_bGetDepartmentName = false;

    static constexpr auto Fields()
    {
        using R = VKMXPmRecipientDetails;
        using namespace vk::mxp;
        constexpr auto enabled = InAttribute{"enabled"};
        return vk::Fields(Field<&R::m_bGetFirstName>("get-firstname", enabled, InWords{}),
                          Field<&R::m_bGetLastName>("get-lastname", enabled, InWords{}),
                          Field<&R::m_bGetDescription>("get-description", enabled, InWords{}),
                          Field<&R::m_bGetAttributes>("get-attributes", enabled, InWords{}),
                          Field<&R::m_bGetProperties>("get-properties", enabled, InWords{}),
                          Field<&R::m_bGetStatus>("get-status", enabled, InWords{}),
                          Field<&R::m_bGetProtocol>("get-protocol", enabled, InWords{}),
                          Field<&R::m_bGetDepartmentName>("get-deptname", enabled, InWords{}));
    }
};
