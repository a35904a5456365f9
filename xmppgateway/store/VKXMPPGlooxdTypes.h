#pragma once

#include "VKField.h"

/// Texts for the error numbers of the gloox library, for the log. Each table is searched by number and ends with a row
/// of number -1 and empty text, which is what an unknown number gives. The conditions are those of RFC 3920.
class VKXMPPGlooxdTypes
{
public:
    using Row = vk::CodeText<int>;

    static const char* GetGlooxConnErrString(int number) { return vk::TextOfCode(GlooxConnErrTable, number); }
    static const char* GetGlooxStreamErrString(int number) { return vk::TextOfCode(GlooxStreamErrTable, number); }
    static const char* GetGlooxStanzaErrTypeString(int number)
    {
        return vk::TextOfCode(GlooxStanzaErrTypeTable, number);
    }
    static const char* GetGlooxStanzaErrString(int number) { return vk::TextOfCode(GlooxStanzaErrTable, number); }

    static const Row GlooxConnErrTable[20];      ///< gloox::ConnectionError, 0 to 18
    static const Row GlooxStreamErrTable[26];    ///< gloox::StreamError, 0 to 24
    static const Row GlooxStanzaErrTypeTable[7]; ///< gloox::StanzaErrorType, 0 to 5
    static const Row GlooxStanzaErrTable[26];    ///< gloox::StanzaError, 0 to 24
};
