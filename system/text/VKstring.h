#pragma once

/// \file
/// The system's text functions, one header a concept. Two generations share each concept: VKutil* on plain character
/// arrays, VKstring* on strings and arrays; twins call the same inner function.

#include "VKascii.h"
#include "VKsafeString.h"
#include "VKstringCase.h"
#include "VKstringClean.h"
#include "VKstringCopy.h"
#include "VKstringNumber.h"
#include "VKstringPath.h"
#include "VKstringPattern.h"
#include "VKstringReplace.h"
#include "VKstringSql.h"
#include "VKstringTokens.h"
#include "VKstringTrim.h"
#include "VKstringXmlText.h"
#include "VKtime.h"
