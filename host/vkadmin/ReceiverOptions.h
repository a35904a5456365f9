#pragma once

#include "Options.h"

/// \file
/// The options of everything about receivers.

namespace vk {

inline constexpr const char* kBooleans = "true|false";

inline constexpr Option kReceiverFields[] = {
    {"--type", "TYPE", "What kind of device it is; a new one is alpha when not given.", Need::Optional,
     "alpha|numeric|two-way|fax"},
    {"--description", "TEXT", "Free text."},
    {"--email", "ADDRESS", "Its mail address."},
    {"--first-name", "NAME", "The person's first name."},
    {"--last-name", "NAME", "The person's last name."},
    {"--department-id", "N", "The department that it belongs to."},
    {"--owner-id", "N", "The user who owns it."},
    {"--carrier-id", "N", "Its carrier."},
    {"--two-way", "BOOL", "Whether it can answer; a new one of that type can.", Need::Optional, kBooleans},
    {"--use-alter-carrier", "BOOL", "Whether the backup carrier is used.", Need::Optional, kBooleans},
    {"--bk-carrier-id", "N", "Its backup carrier; 0 for none."},
    {"--bk-pin", "PIN", "Its address there."},
    {"--voice-enable", "BOOL", "Whether it can be called.", Need::Optional, kBooleans},
    {"--voice-number", "NUMBER", "Under which number."},
    {"--email-fail-over", "BOOL", "Mail when the carrier fails.", Need::Optional, kBooleans},
    {"--email-cc", "BOOL", "Mail as well.", Need::Optional, kBooleans},
    {"--keep-alpha-for-num-type", "BOOL", "Keep letters for a numeric device.", Need::Optional, kBooleans},
    {"--advanced-messaging", "BOOL", "Whether it is a mobile client with settings of its own.", Need::Optional,
     kBooleans},
    {"--is-secure", "BOOL", "Whether what it gets is encrypted.", Need::Optional, kBooleans},
    {"--msg-encrypt-opt", "N", "How messages are encrypted."},
    {"--status-code", "N", "1 available, 2 off duty; see \"receiver status\"."},
    {"--disable-start-date", "SECONDS", "Since when it is off duty, seconds since 1970."},
    {"--disable-end-date", "SECONDS", "Until when; 0 for an open end."},
    {"--forward-to-id", "N", "The receiver that covers it meanwhile; 0 for none."},
    {"--forward-to-number", "NUMBER", "The number that covers it."},
    {"--time-zone-id", "N", "Its time zone."},
    {"--time-zone-hr-diff", "N", "Hours from the server's time."},
    {"--ad-code", "CODE", "Its code in the directory."},
    {"--ldap", "BOOL", "Whether it comes from the directory service.", Need::Optional, kBooleans},
    {"--remedy-flag", "BOOL", "Whether trouble tickets reach it.", Need::Optional, kBooleans},
    {"--acct-name", "NAME", "The account with which its person logs in."},
    {"--account-password-file", "FILE", "That account's password, the first line of a file; \"-\" is standard input."},
    {"--security-code-file", "FILE", "Its security code, the first line of a file."},
    {"--mxp-password-file", "FILE", "The mobile device's password on its carrier, the first line of a file."},
    {"--bk-mxp-password-file", "FILE", "The same on its backup carrier."},
    {"--device-id", "TOKEN", "Under which its push service knows the mobile device."},
    {"--device-push-service", "NAME", "That push service."},
    {"--can-update-rece", "BOOL", "Whether that person may change the receiver.", Need::Optional, kBooleans},
    {"--can-update-schd", "BOOL", "Whether that person may change its schedules.", Need::Optional, kBooleans},
};

inline constexpr auto kReceiverAdd = Joined(
    {
        {"--name", "NAME", "Its name, unique.", Need::Required},
        {"--pin", "PIN", "Its address on the carrier; the bare JID of a mobile device.", Need::Required},
    },
    kReceiverFields);

inline constexpr auto kReceiverModify = Joined(
    {
        {"--id", "N", "The one with this id."},
        {"--name", "NAME", "The one with this name, letters of either case."},
        {"--new-name", "NAME", "Its new name."},
        {"--pin", "PIN", "Its new address on the carrier."},
    },
    kReceiverFields);

inline constexpr Option kReceiverFilter[] = {
    {"--name", "TEXT", "Those whose name begins with this; \"*\" stands for any text."},
    {"--pin", "TEXT", "Those whose PIN begins with this."},
    {"--initial", "KIND", "Those whose name begins with a letter from A to Z, or with anything else.", Need::Optional,
     "letters|others"},
    {"--carrier-id", "N", "Those on this carrier."},
    {"--protocol-id", "N", "Those whose carrier speaks this protocol."},
    {"--department-id", "N", "Those in this department, guests too."},
    {"--cover-name", "TEXT", "Those covered by a receiver whose name begins with this."},
    {"--available", "BOOL", "Those that are available, or are not.", Need::Optional, kBooleans},
    {"--voice-enable", "BOOL", "Those that can be called, or cannot.", Need::Optional, kBooleans},
    {"--advanced-messaging", "BOOL", "Those that are mobile clients with settings of their own, or are not.",
     Need::Optional, kBooleans},
    {"--owner-id", "N", "Those of this user."},
    {"--id", "N", "Those with these ids.", Need::Any},
    {"--attribute", "NAME=VALUE", "Those with all these values of attributes.", Need::Any},
    {"--acct-name", "NAME", "Those with this account; with --account-password-file."},
    {"--account-password-file", "FILE", "And with this password, the first line of a file."},
};

inline constexpr Option kReceiverStatus[] = {
    {"--id", "N", "The one with this id."},
    {"--name", "NAME", "The one with this name, letters of either case."},
    {"--set", "STATUS", "What it is from now on. A cover ends with it.", Need::Optional, "available|unavailable"},
    {"--from", "SECONDS", "Since when it is unavailable, seconds since 1970; now when not given."},
    {"--to", "SECONDS", "Until when; an open end when not given."},
};

inline constexpr Option kReceiverGuests[] = {
    {"--id", "N", "The receiver with this id."},
    {"--name", "NAME", "The one with this name, letters of either case."},
    {"--add", "N", "A department in which it is to be seen.", Need::Any},
    {"--remove", "N", "One in which it no longer is.", Need::Any},
};

inline constexpr Option kReceiverAttributes[] = {
    {"--id", "N", "The receiver with this id."},
    {"--name", "NAME", "The one with this name, letters of either case."},
    {"--set", "NAME=VALUE", "Its value of an attribute.", Need::Any},
    {"--remove", "NAME", "An attribute of which it is to have no value.", Need::Any},
};

inline constexpr Option kReceiverImport[] = {
    {"--dry-run", nullptr, "Only tells which rows cannot be stored, and why."}};
inline constexpr Operand kReceiverCsvIn[] = {{"FILE", "The table, CSV in UTF-8; \"-\" is standard input."}};
inline constexpr Operand kReceiverCsvOut[] = {{"FILE", "Where it goes; \"-\" is standard output."}};

inline constexpr Option kAttributeFields[] = {
    {"--attr-order", "N", "Its place in lists."},
    {"--type", "N", "What kind of value it has."},
    {"--attr-values", "TEXT", "The values to choose from."},
};
inline constexpr auto kAttributeAdd =
    Joined({{"--name", "NAME", "Its name, unique.", Need::Required}}, kAttributeFields);
inline constexpr auto kAttributeModify = Joined(
    {{"--id", "N", "The one with this id.", Need::Required}, {"--name", "NAME", "Its new name."}}, kAttributeFields);
inline constexpr Option kAttributeDelete[] = {{"--id", "N", "The one with this id.", Need::Required}};

} // namespace vk
