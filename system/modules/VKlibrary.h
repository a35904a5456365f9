#pragma once

#include <string>

/// \file
/// A process that uses the library's threads begins with InitialLib, before it starts one, and ends with CloseLib.
/// Both see to the threads (see VKconThread::InitializeLibrary, whose VKconException comes through), then to the sockets.

bool InitialLib();
bool CloseLib();

/// The same for an installation at `path`, which is kept for the process.
bool InitialLib(const std::string& path);

namespace vk {

/// The path of the last InitialLib(path); empty without one. Set before threads run, so it needs no lock.
const std::string& LibraryPath();

} // namespace vk
