#pragma once

#include <string>

/// \file
/// A process that uses the library's threads begins with InitialLib, before it starts one, and ends with CloseLib.
/// Both see to the threads (see VKconThread::InitializeLibrary, whose VKconException comes through), then to the sockets.

class VKsystemResource;

bool InitialLib();
bool CloseLib();

/// The same for an installation at `path`, which is kept for the process. The first call loads the library's texts from
/// the file "libresource.res" there, or from the one in the working directory.
bool InitialLib(const std::string& path);

namespace vk {

/// The path of the last InitialLib(path); empty without one. Set before threads run, so it needs no lock.
const std::string& LibraryPath();

/// The library's texts; empty when there was no file. Loaded before threads run, so it needs no lock.
const VKsystemResource& LibraryResource();

} // namespace vk
