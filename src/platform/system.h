// What the program asks of the operating system besides serial ports: time, files and folders,
// starting another program, shared libraries. Paths are UTF-8 on every system.
#ifndef PLATFORM_SYSTEM_H
#define PLATFORM_SYSTEM_H

#include <cstdint>
#include <cstdio>
#include <string>

// Milliseconds of a steady clock; wraps after 2^32 ms.
uint32_t PLT_TickMs();
// The same clock in microseconds, for traces and benches.
uint64_t PLT_TickUs();
void PLT_SleepMs(unsigned ms);

struct PLT_FileStamp {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0; // local time
};
// Modification time of a file; 0, or -1 when it cannot be examined.
int PLT_GetFileStamp(const std::string &path, PLT_FileStamp *stamp);

struct PLT_Date {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
};
void PLT_LocalTime(PLT_Date *now);
// The system's clock: milliseconds since 1970 in UTC. It may be set, also back.
int64_t PLT_UtcMs();

// Starts a program with its arguments and does not wait for it. Arguments are parted by
// blanks; single and double quotes keep blanks together. No shell is involved: nothing
// is expanded. The program gets no standard input or output. 0, or -1 when it could
// not be started.
int PLT_Launch(const std::string &commandLine);
// Opens a text file for the user: $VISUAL, $EDITOR or the desktop's opener (an editor
// that needs a terminal gets one when the system has x-terminal-emulator); on Windows
// the system's text editor. 0, or -1 when nothing could be started. However the file is
// named, its name reaches the program as a path and never as an option.
int PLT_OpenInEditor(const std::string &path);
// Opens a document (the help text) in the user's viewer. 0, or -1. Paths as above.
int PLT_OpenInViewer(const std::string &path);

// The path as another program may be given it: absolute, or with "./" in front.
std::string PLT_PathArgument(const std::string &path);
std::string PLT_CurrentDir(); // without a trailing separator; "" when unknown
std::string PLT_ConfigDir();  // $XDG_CONFIG_HOME/vireo2, ~/.config/vireo2, or %APPDATA%\Vireo2
std::string PLT_ProgramDir(); // folder of the running program; "" when unknown
char PLT_PathSeparator();     // '/' or '\\'
// Makes a folder and all that lead to it. 0 (also when it exists), or -1.
int PLT_MakeDirs(const std::string &path);

// Shared libraries, bound at run time. Null when not found.
void *PLT_LoadLibrary(const std::string &name);
void *PLT_GetSymbol(void *library, const char *name);

// Moves `from` over `to` in one step: after a crash one of the two is whole. The new
// file takes the permissions of the one it replaces. 0, or -1.
int PLT_ReplaceFile(const std::string &from, const std::string &to);
// The file that writing to `path` would change, behind links. 0 with *real (also when there
// is no such file yet), or -1 when `path` is something else than a plain file.
int PLT_ResolveFile(const std::string &path, std::string *real);
std::FILE *PLT_OpenFile(const std::string &path, const char *mode); // as fopen
int PLT_RemoveFile(const std::string &path);                        // 0, or -1
int PLT_Seek(std::FILE *file, int64_t offset); // from its start, also beyond 2 GB. 0, or -1
int PLT_SyncFile(std::FILE *file);             // waits until the disk has it. 0, or -1
// Opens a plain file for binary reading without waiting for anything. 0 with its size in
// bytes, -1: cannot be opened, -2: a folder, device or pipe.
int PLT_OpenPlainFile(const std::string &path, std::FILE **file, int64_t *size);
// Makes a file that must not exist yet, not even as a link, and keeps it locked while it is
// open. `mode` as for fopen. 0, or -1.
int PLT_CreateExclusive(const std::string &path, const char *mode, std::FILE **file);
// Removes a plain file that was made by PLT_CreateExclusive and that nobody has open any
// more. 0, or -1: it stays.
int PLT_RemoveAbandoned(const std::string &path);
bool PLT_IsReadOnly(const std::string &path); // an existing file that is write-protected
int PLT_ProcessId();
bool PLT_IsProcessAlive(long processId); // also when it is somebody else's
// From now on `notify` is called, on a thread of its own, when the program is asked to end:
// Ctrl-C (isInterrupt), a terminate or hang-up signal, the end of the session. A second
// request before PLT_SignalHeard ends the program at once. 0, or -1.
int PLT_WatchSignals(void (*notify)(bool isInterrupt));
void PLT_SignalHeard(); // the last request has been acted on
// The arguments of main as UTF-8; call before reading them. They live as long as the program.
void PLT_GetArguments(int *argc, char ***argv);
// A program started with a closed standard stream would get that number for the next file
// or port it opens, and print into it or read from it. Call first of all: what is closed
// then fails on use instead; so does writing to a pipe that nobody reads any more.
void PLT_GuardStandardStreams();

#endif
