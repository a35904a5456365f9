#pragma once

#include "VKFieldValidator.h"

/// \file
/// The legal names, addresses and numbers of this system. Each validator is its expression and nothing else.

class VKNameValidator : public VKFieldValidator
{
public:
    VKNameValidator() : VKFieldValidator(R"re(([a-zA-Z'\.\- ])+)re") {}
};

class VKNameValidatorEx : public VKFieldValidator
{
public:
    VKNameValidatorEx() : VKFieldValidator(R"re(([a-z]|[A-Z]|[0-9]|'|\.|_|-| )+)re") {}
};

class VKAlphaValidator : public VKFieldValidator
{
public:
    VKAlphaValidator() : VKFieldValidator(R"re(([a-zA-Z ])+)re") {}
};

class VKNumericValidator : public VKFieldValidator
{
public:
    VKNumericValidator() : VKFieldValidator(R"re(([0-9])+)re") {}
};

class VKAlphaNumericValidator : public VKFieldValidator
{
public:
    VKAlphaNumericValidator() : VKFieldValidator(R"re(([a-zA-Z0-9])+)re") {}
};

class VKNoSpaceValidator : public VKFieldValidator
{
public:
    VKNoSpaceValidator() : VKFieldValidator(R"re(([^ ])+)re") {}
};

class VKNoHTMLValidator : public VKFieldValidator
{
public:
    VKNoHTMLValidator() : VKFieldValidator(R"re(([^<>])+)re") {}
};

class VKNoHTMLDoubleQuoteValidator : public VKFieldValidator
{
public:
    VKNoHTMLDoubleQuoteValidator() : VKFieldValidator(R"re(([^<>"])*)re") {}
};

class VKNoMultipleSpaceFieldValidator : public VKFieldValidator
{
public:
    VKNoMultipleSpaceFieldValidator()
        : VKFieldValidator(R"re(((([a-zA-Z0-9_\-\.\*\&])+)( ([a-zA-Z0-9_\-\.\*\&])+)*))re")
    {
    }
};

/// Anything but a double quote, empty too.
class VKPasswordValidator : public VKFieldValidator
{
public:
    VKPasswordValidator() : VKFieldValidator(R"re(([^"])*)re") {}
};

/// One "@", and neither "+" nor "%" in the domain.
class VKEmailValidator : public VKFieldValidator
{
public:
    VKEmailValidator() : VKFieldValidator(R"re(([a-zA-Z0-9_\.\-\+])+@([a-zA-Z0-9_\.\-])+)re") {}
};

class VKPhoneNoValidator : public VKFieldValidator
{
public:
    VKPhoneNoValidator() : VKFieldValidator(R"re((\+){0,1}(\(([0-9a-zA-Z\*# \-,\.])+\)|([0-9a-zA-Z\*# \-,\.])+)+)re") {}
};

class VKAddressValidator : public VKFieldValidator
{
public:
    VKAddressValidator() : VKFieldValidator(R"re(([a-zA-Z0-9_ \.\-\\\/])+)re") {}
};

class VKHttpAddressValidator : public VKFieldValidator
{
public:
    VKHttpAddressValidator() : VKFieldValidator(R"re(([a-zA-Z0-9$\-_@\.&\+\/\\%!\*\(\),\?\:=$';\?])+)re") {}
};

/// A dotted address of which the numbers have no range, with a port behind ":" if wanted, or "*".
class VKIPAddressValidator : public VKFieldValidator
{
public:
    VKIPAddressValidator() : VKFieldValidator(R"re((\*)|(([0-9]){1,3}(\.([0-9]){1,3}){3}(\:([0-9])+)?))re") {}
};

class VKServiceNameValidator : public VKFieldValidator
{
public:
    VKServiceNameValidator() : VKFieldValidator(R"re(([a-zA-Z0-9_\.])+)re") {}
};

class VKDBNameValidator : public VKFieldValidator
{
public:
    VKDBNameValidator() : VKFieldValidator(R"re(([a-zA-Z0-9_ $\`\-\&\(\)\+\,=;\{\}@\[\]^\~!])+)re") {}
};

class VKDBColumnNameValidator : public VKFieldValidator
{
public:
    VKDBColumnNameValidator() : VKFieldValidator(R"re(([a-zA-Z0-9_\.])+)re") {}
};

class VKDeviceNameValidator : public VKFieldValidator
{
public:
    VKDeviceNameValidator() : VKFieldValidator(R"re(([a-zA-Z0-9 !\&$\(\)\+,\-\.;=@\[\]^_`\{\}\~])+)re") {}
};

class VKPortNameValidator : public VKFieldValidator
{
public:
    VKPortNameValidator() : VKFieldValidator(R"re(([a-z]|[A-Z]|[0-9]|\.|/| )+)re") {}
};

class VKParameterKeyValidator : public VKFieldValidator
{
public:
    VKParameterKeyValidator() : VKFieldValidator(R"re(([a-z]|[A-Z]|[0-9]|\.|_|-| )+)re") {}
};

class VKReceiverAttribNameValidator : public VKFieldValidator
{
public:
    VKReceiverAttribNameValidator() : VKFieldValidator(R"re(([a-zA-Z0-9_ \-\.])+)re") {}
};

class VKActionParamNameValidator : public VKFieldValidator
{
public:
    VKActionParamNameValidator() : VKFieldValidator(R"re(([^@])+)re") {}
};

/// An optional digit, an optional colour of six hexadecimal digits and free text, joined by commas.
class VKCustomHeaderLabelValidator : public VKFieldValidator
{
public:
    VKCustomHeaderLabelValidator() : VKFieldValidator(R"re(([0-9]){0,1},(([0-9aAbBcCdDeEfF]){6}){0,1},.*)re") {}
};
