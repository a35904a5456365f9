#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "VKMXPmTablePacket.h"

/// A client pages through the receivers. The response carries every detail, an empty one for what was not asked for.
class VKMXPmGetListReceivers : public vk::mxp::TablePacket<VKMXPmGetListReceivers>
{
public:
    struct Receiver
    {
        std::string m_strName;
        std::string m_strFirstName;
        std::string m_strLastName;
        std::string m_strDescription;
        std::string m_strAttributes;
        bool m_bTwoWay = false;
        bool m_bDevice = false;
        bool m_bSecure = false;

        static constexpr auto Fields()
        {
            using R = Receiver;
            using namespace vk::mxp;
            return vk::Fields(Field<&R::m_strName>("name"), Field<&R::m_strFirstName>("first-name"),
                              Field<&R::m_strLastName>("last-name"), Field<&R::m_strDescription>("desc"),
                              Field<&R::m_strAttributes>("attr"),
                              Group("prop", vk::Fields(Flag<&R::m_bTwoWay>("is-2way", Attribute{}),
                                                       Flag<&R::m_bDevice>("is-dev", Attribute{}),
                                                       Flag<&R::m_bSecure>("is-secure", Attribute{}))));
        }
    };

    std::string m_strNameFilter;
    std::string m_strAttributeFilter;
    std::string m_strPattern = "*"; ///< not on the wire
    bool m_bGetFirstName = false;
    bool m_bGetLastName = false;
    bool m_bGetDescription = false;
    bool m_bGetAttributes = false;
    bool m_bGetProperties = false;
    std::int32_t m_iPageNumber = 1;
    std::int32_t m_iPageSize = 10;
    std::int32_t m_iPageStep = 1;           ///< not on the wire
    std::vector<Receiver> m_vecReceivers;   ///< response
    std::int32_t m_iResponsePageNumber = 1; ///< response
    std::int32_t m_iResponsePageSize = 1;   ///< response
    bool m_bLastPage = false;               ///< response

    static constexpr char kElement[] = "getlist-receivers";

    /// Meant: the writer puts the five flags into texts, the reader takes what clients send, an attribute. What is
    /// written here does not read back.
    static constexpr auto ParamFields()
    {
        using P = VKMXPmGetListReceivers;
        using namespace vk::mxp;
        constexpr auto enable = ReadInAttribute{"enable"};
        return Fields(Field<&P::m_strNameFilter>("name-filter"), Field<&P::m_strAttributeFilter>("attr-filter"),
                      Field<&P::m_bGetFirstName>("get-firstname", InWords{}, enable),
                      Field<&P::m_bGetLastName>("get-lastname", InWords{}, enable),
                      Field<&P::m_bGetDescription>("get-description", InWords{}, enable),
                      Field<&P::m_bGetAttributes>("get-attributes", InWords{}, enable),
                      Field<&P::m_bGetProperties>("get-properties", InWords{}, enable),
                      Field<&P::m_iPageNumber>("page-nr"), Field<&P::m_iPageSize>("page-size"));
    }

    static constexpr auto ResultFields()
    {
        using P = VKMXPmGetListReceivers;
        using namespace vk::mxp;
        return Fields(
            Group("receivers",
                  Fields(Field<&P::m_vecReceivers>("count", CountOf{}),
                         Field<&P::m_iResponsePageNumber>("page_nr", Attribute{}),
                         Field<&P::m_iResponsePageSize>("page_size", Attribute{}),
                         Flag<&P::m_bLastPage>("is_last", Attribute{}), Field<&P::m_vecReceivers>("receiver", Items{})),
                  NoLineFeed{}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmGetListReceivers>;
