// The data logger's download: finds a log on the target, reads it with the table of record
// ids, tests it, and writes and reads the files. Shows nothing itself: a host says where the
// target is and who hears of errors and progress. At most one download at a time.
#ifndef LOGGER_DLLD_H
#define LOGGER_DLLD_H

#include <cstdint>
#include <string>
#include <vector>

#include "logger/dlld_message.h"

constexpr uint32_t DLLD_ANY_ADDRESS = 0xFFFFFFFF;

enum {
    DLLD_ERR_HEADER = -1,
    DLLD_ERR_OPEN = -2,
    DLLD_ERR_FILE = -3, // the file cannot be read or written to its end
};

// Who asks, and for which target.
struct DLLD_Host {
    int station = 0;
    bool isWordAddressing = false; // addresses kept on the target count 16-bit words
    bool hasRecIds = false;        // the processor keeps a table of record ids
    // A failure, once, for the user. May be null.
    void (*showError)(const char *title, const std::string &text) = nullptr;
    // A long reading has `done` of `total` bytes; total 0 ends it, on every path. True: the
    // user wishes to cancel. May be null.
    bool (*showProgress)(uint32_t done, uint32_t total, const char *text) = nullptr;
};
void DLLD_SetHost(const DLLD_Host &host);
const DLLD_Host &DLLD_GetHost();
std::string DLLD_BadHeaderText(const std::string &name); // "Bad log header (NAME)."
void DLLD_ErrorMessage(const char *title, const std::string &text);
bool DLLD_IsCancelled();                // the last reading ended because the user cancelled it
const std::string &DLLD_GetLinkCause(); // ... why the target's answer failed it, "" if it did not

// Reading. 0, or -1 after one error message (none when the user cancelled).
int DLLD_GetWrkAddr(uint32_t *address, const std::string &name);
int DLLD_ReadData(uint32_t address, uint32_t length, void *buffer);
int DLLD_ReadVar(const std::string &name, uint32_t length, void *buffer);
int DLLD_ReadWords(uint32_t address, uint16_t *words, int32_t count);
// Where the variable `name` says that its log stands, and the size it says.
int DLLD_FindLog(const std::string &name, uint32_t *address, int32_t *words);
// Fills the table of record ids; on failure it is as it was.
int DLLD_ReadARecId();
// The whole log of the variable `name`. A damaged header, and a log that the target changes
// under the reading, are read once again before they are reported.
int DLLD_ReadLog(const std::string &name, DLLD_Log *log);
// The same for a log whose buffer stands at a byte address: its header says how long it is.
int DLLD_ReadLogAt(uint32_t address, DLLD_Log *log);

// What can be said of a log without reading it whole.
struct DLLD_Survey {
    uint32_t address = 0;
    int32_t words = 0;
    uint16_t header[DLLD_HEADER_WORDS] = {};
    bool isGood = false;     // the header is; else there is no more to say
    int32_t filledWords = 0; // up to the end of the last message, header included
    uint32_t firstStamp = 0; // of the first and last message of the buffer; 0 for none
    uint32_t lastStamp = 0;
};
// A few reads: the fill is found by halving, so that stretches of 32 or more zero words
// between messages may make it come out too small.
int DLLD_SurveyLog(const std::string &name, DLLD_Survey *survey);

// 0, or -1: the size is not 8 to 524,288 words or not the one in the header, the signature
// is not there, or the address (unless DLLD_ANY_ADDRESS) is another.
int DLLD_TestLogHeader(const uint16_t *buffer, uint32_t address, int64_t sizeInWords);

// Files, each saved whole or not at all. 0 or DLLD_ERR_...
int DLLD_SaveBinLogFe(const std::string &path, const DLLD_Log &log);
int DLLD_ReadBinLogFe(const std::string &path, DLLD_Log *log); // on failure as it was
// The listing; -1 for every failure.
int DLLD_SaveStdLogFe(const std::string &path, const DLLD_Log &log);
int DLLD_SaveHexLogFe(const std::string &path, const DLLD_Log &log); // contents in hexadecimal
// The old layout: a line a message. 0 or DLLD_ERR_...
int DLLD_SaveOldLogFe(const std::string &path, const DLLD_Log &log);

// --- for a user of this program: the console's commands and the log window -------------------
// The host with everything a download asks of the program: target and processor as the settings
// say, errors in pop-ups, progress in a box with Cancel. Before every download, because the
// settings may have changed since the last one.
void LOGV_UseTarget();
// Variables of the map that describe a log.
std::vector<std::string> LOGV_FindTargetLogs();

#endif
