// Saving a file so that a crash or a full disk never loses the old one: the new
// text is written beside the target and renamed over it only when it is whole. What a
// program that was killed left beside the target goes at the next save of that file.
#ifndef PLATFORM_SAFE_FILE_H
#define PLATFORM_SAFE_FILE_H

#include <cstdio>
#include <string>

struct SafeFile {
    std::FILE *file = nullptr; // write here
    std::string path;          // final name
    std::string tempPath;      // name while being written
};

enum { PLT_SAVE_ERR_OPEN = -1, PLT_SAVE_ERR_READ_ONLY = -2 };

// Opens a new file beside `path` for binary writing ("wb"). 0, or PLT_SAVE_ERR_OPEN, or
// PLT_SAVE_ERR_READ_ONLY: the file is write-protected and is to stay. Nothing is created then.
int PLT_BeginSave(SafeFile *safe, const std::string &path, const char *mode);
// Writes text whose line feeds become CR LF, as text files have them on every system. A write
// that fails shows at the commit.
void PLT_SaveText(std::FILE *file, const std::string &text);
// Flushes, closes and renames. 0, or -1: the old file is untouched and the new one removed.
int PLT_CommitSave(SafeFile *safe);
// "Could not write the file NAME.", for whoever tells the user that one of these failed.
std::string PLT_SaveFailureText(const std::string &path);
// Gives up: the old file stays as it was.
void PLT_CancelSave(SafeFile *safe);

// Who asks the user whether a write-protected file may be replaced; without one (null) it
// never is. Set at start-up by whoever can show a question.
typedef bool (*PLT_SaveQuestion)(const std::string &path);
void PLT_SetSaveQuestion(PLT_SaveQuestion question);

#endif
