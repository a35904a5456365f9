#pragma once

#include <string>

/// \file
/// Removing what a text must not hold, in place. Bytes of 0x80 and more stay unless told otherwise. Null passes.

/// Without control characters; tab and line ends stay.
char* VKstringCleanText(char* text);
std::string& VKstringCleanText(std::string& text);
inline char* VKutilCleanText(char* text) { return VKstringCleanText(text); }
/// The same, and every run of white space becomes one blank: a text of one line.
char* VKutilCleanText2(char* text);

/// Digits only.
char* VKstringCleanNumeric(char* text);
std::string& VKstringCleanNumeric(std::string& text);
inline char* VKutilCleanNumeric(char* text) { return VKstringCleanNumeric(text); }

/// Printable ASCII only.
char* VKutilCleanUnprintableChar(char* text);

/// Takes out of a message what the system itself added to it: lines that begin with one of the marks "Msg ID: ",
/// "Sent by ", "Sent to ", "Sent at " and "Subject: ", each line cut into parts where a further mark begins. The flags,
/// in that order, select the parts to remove; a line that holds nothing more goes with its line end. Marks inside a
/// line of the sender's own stay.
char* VKutilCleanMessageIncludeParams(char* message, bool messageId, bool sender, bool recipient, bool time,
                                      bool subject);
