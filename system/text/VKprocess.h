#pragma once

#include <string>
#include <sys/types.h>

/// Runs a command line in the shell and waits for its end; give it no text from outside. Returns its exit code, 128
/// and the signal's number when a signal ended it, -1 when it could not be started. Unlike system() it leaves the
/// signal handling of the process alone.
int VKsystem(const char* command);

/// Runs a program without a shell: the command line is parted as by BuildCommandLineArguments. What it writes to its
/// standard output is put into `output`. Returns as VKsystem does; 127 when there is no such program.
int systemEx(const std::string& commandLine, std::string& output);

/// Whether a process with this number exists, whoever owns it.
bool IsProcessRunning(pid_t process);

/// Makes this process a daemon: goes on in a child with a session of its own while the parent exits with 0. With the
/// flags it works in "/" from then on, and has its standard streams on /dev/null. Call it before any thread is made.
/// Returns 0 in the daemon, -1 when it could not be made (this process then goes on as it was).
int VKstartDaemon(bool changeToRoot, bool closeStreams);

/// Closes every descriptor from `lowest` on.
void closeallfiles(int lowest = 3);
