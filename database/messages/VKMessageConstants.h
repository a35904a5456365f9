#pragma once

/* The texts that tell people which rule a record breaks: what is wrong with which field, and what would be accepted.
   "vkadmin messages build" makes "messages.sdb" from a file of this form, so an installation may have its own wording or
   language: one #define a text, its number, and behind it the text as a comment, which may run over several lines. */

/* Departments */

#define VKMSG_DEPARTMENT_NAME_MISSING 1003 /* The department name is missing. Enter a name of 1 to 50 characters. */
#define VKMSG_DEPARTMENT_NAME_INVALID 1004 /* The department name is not valid. Letters, digits, blanks and the
    characters ' . _ - are accepted. */
#define VKMSG_DEPARTMENT_NAME_IN_USE 1005 /* The department name is already in use. Enter a name that no other
    department has; upper and lower case count as the same. */
#define VKMSG_DEPARTMENT_MAXIMUM_RANGE 1006 /* The maximum number of receivers of the department is out of range. Enter
    a number from 1 to the limit in the global settings. */
#define VKMSG_DEPARTMENT_MAXIMUM_BELOW_COUNT 1007 /* The maximum number of receivers of the department is below the
    number of receivers that it has. Enter that number or a higher one. */

/* Receivers: the cover receiver */

#define VKMSG_RECEIVER_COVER_NOT_AVAILABLE 1108 /* The cover receiver is not available for the whole period. Choose a
    receiver that is neither disabled in it nor covers another one for a shorter time. */
#define VKMSG_RECEIVER_COVER_UNKNOWN 1109 /* The cover receiver does not exist. Choose one that does, or none. */
#define VKMSG_RECEIVER_COVER_CIRCLE 1169 /* The cover receiver is itself covered by this receiver. Choose another
    one. */

/* Receivers: name and address */

#define VKMSG_RECEIVER_NAME_MISSING 1110 /* The device name is missing. Enter a name of 1 to 50 characters. */
#define VKMSG_RECEIVER_NAME_INVALID 1111 /* The device name is not valid. Letters, digits, blanks and the characters
    ! & $ ( ) + , - . ; = @ [ ] ^ _ ` { } ~ are accepted. */
#define VKMSG_RECEIVER_PIN_MISSING 1113 /* The PIN is missing. Enter the address of the device on its carrier. */
#define VKMSG_RECEIVER_NAME_IN_USE 1114 /* The device name is already in use. Enter a name that no other receiver and
    no group has; upper and lower case count as the same. */
#define VKMSG_RECEIVER_PIN_INVALID 1124 /* The PIN is not valid on its carrier. Enter one that fits the carrier's
    protocol and its PIN template; on an MXP carrier, one without blanks that no other receiver has. */
#define VKMSG_RECEIVER_FIRST_NAME_INVALID 1165 /* The first name is not valid. Letters, blanks and the characters
    ' . - are accepted. */
#define VKMSG_RECEIVER_LAST_NAME_INVALID 1166 /* The last name is not valid. Letters, blanks and the characters
    ' . - are accepted. */

/* Receivers: type and carrier */

#define VKMSG_RECEIVER_FAX_TYPE 1115 /* The type does not fit the fax carrier. Choose the type fax, or another
    carrier. */
#define VKMSG_RECEIVER_VOICE_DISABLED 1116 /* Voice is not enabled, and the voice carrier needs it. Enable voice, or
    choose another carrier. */
#define VKMSG_RECEIVER_VOICE_TYPE 1133 /* The type does not fit the voice carrier. Choose the type alpha, or another
    carrier. */
#define VKMSG_RECEIVER_OAI_TYPE 1153 /* The type fax does not fit the carrier. Choose the type alpha, numeric or
    two-way, or another carrier. */

/* Receivers: voice and mail */

#define VKMSG_RECEIVER_VOICE_NUMBER_INVALID 1117 /* The voice number is not valid. Digits only are accepted. */
#define VKMSG_RECEIVER_VOICE_MAIL_BLANK 1118 /* The e-mail address holds a blank. With voice enabled it must be one
    address without blanks. */
#define VKMSG_RECEIVER_VOICE_ADDRESS_MISSING 1119 /* The voice number and the e-mail address are both missing. With
    voice enabled, enter one of them. */
#define VKMSG_RECEIVER_MAIL_MISSING 1120 /* The e-mail address is missing. Enter one, or switch off the copy by e-mail
    and the fail-over to e-mail. */
#define VKMSG_RECEIVER_MAIL_REQUIRED 1171 /* The e-mail address is missing. Enter one, or switch advanced messaging off;
    only a receiver on an MXP carrier has it without. */

/* Receivers: the backup carrier */

#define VKMSG_RECEIVER_BACKUP_CARRIER_MISSING 1121 /* The backup carrier is missing. Choose one, or switch the use of an
    alternative carrier off. */
#define VKMSG_RECEIVER_BACKUP_PIN_MISSING 1122 /* The backup PIN is missing. Enter the address of the device on its
    backup carrier. */
#define VKMSG_RECEIVER_BACKUP_MXP_PIN_MISSING 1172 /* The backup PIN is missing. Enter the user of the mobile client on
    its backup carrier, as user@domain. */
#define VKMSG_RECEIVER_BACKUP_CARRIER_SAME 1123 /* The backup carrier is the primary one. Choose another carrier as
    backup. */
#define VKMSG_RECEIVER_BACKUP_PIN_INVALID 1125 /* The backup PIN is not valid on the backup carrier. Enter one that fits
    the carrier's protocol and its PIN template; on an MXP carrier, one without blanks that no other receiver has. */

/* Receivers: account */

#define VKMSG_RECEIVER_ACCOUNT_PASSWORD_MISSING 1126 /* The account has a name and no password. Enter both, or
    neither. */
#define VKMSG_RECEIVER_ACCOUNT_NAME_MISSING 1127 /* The account has a password and no name. Enter both, or neither. */
#define VKMSG_RECEIVER_ACCOUNT_NAME_INVALID 1167 /* The account name is not valid. Printable ASCII characters but none
    of " ' : \ / % < > # * ? | ; , are accepted. */

/* Receivers: disable period and department */

#define VKMSG_RECEIVER_PERIOD_START_MISSING 1128 /* The disable period has an end and no start. Enter its start as
    well. */
#define VKMSG_RECEIVER_PERIOD_OVER 1130 /* The disable period has ended already. Enter an end that lies ahead, or
    none. */
#define VKMSG_RECEIVER_PERIOD_REVERSED 1131 /* The disable period ends before it starts. Enter an end after its start,
    or none. */
#define VKMSG_RECEIVER_PERIOD_START_LATE 1168 /* The new start of the disable period lies after its end. Enter a start
    before the end. */
#define VKMSG_RECEIVER_DEPARTMENT_MISSING 1132 /* The department is missing. While departments have limits, every
    receiver belongs to one. */
