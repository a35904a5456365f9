#pragma once

#include <string>

/// The text of the calling thread's current errno. Leaves errno as it is.
std::string VKgetLastError();
