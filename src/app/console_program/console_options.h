// The console program's own options: they begin with "--" and are taken out of the
// command line before the rest of the program sees it.
#ifndef APP_CONSOLE_PROGRAM_CONSOLE_OPTIONS_H
#define APP_CONSOLE_PROGRAM_CONSOLE_OPTIONS_H

#include <cstdint>
#include <string>
#include <vector>

#include "runtime/headless/headless.h"

enum CPG_Format { CPG_TEXT, CPG_CSV, CPG_JSON };

struct CPG_Options {
    bool isHelp = false;
    bool isVersion = false;
    bool isFull = false;
    bool isEcho = false; // the line echoes what is sent
    HL_DefaultAnswer answer = HL_ANSWER_SAFE;
    std::string watchFile; // "" = do not watch
    long sweeps = 0;       // 0 = until interrupted
    CPG_Format format = CPG_TEXT;
    std::string programFile; // HEX file to program into the target's flash, "" = none
    bool isNoErase = false;
    bool isNoVerify = false;
    std::string typesFile; // type map to open, "" = none but the settings'
    std::string traceFile;
    std::string scopeFile;     // settings of a scope recording, "" = none
    std::string csvFile;       // where it goes; "-" = standard output
    double scopeWait = 10;     // seconds to wait for the trigger
    bool isSnap = false;       // do not wait for it
    std::string recordFile;    // of the watch list's values as they come, "" = none
    int recordPeriodMs = 1000; // 0 = as fast as the line allows
    bool hasRecordPeriod = false;
    double recordSeconds = 0; // 0 = until interrupted
    uint64_t rotateBytes = 0;
    uint32_t rotateMinutes = 0;
    std::vector<std::string> triggers;
    std::string compareHeader; // set to compare the target with compareFile, "" = none
    std::string compareFile;
    bool isServe = false; // answer requests of another program
    std::string archive;  // to be written from archiveFiles
    std::vector<std::string> archiveFiles;
};

// What a run is for; a run has one job.
enum CPG_Job { CPG_LINES, CPG_WATCH, CPG_RECORD, CPG_PROGRAM, CPG_SCOPE, CPG_COMPARE, CPG_SERVE };
CPG_Job CPG_JobOf(const CPG_Options &options);

// Fills *options and leaves the other arguments in argc/argv. 0, or -1 and what is
// wrong in *message.
int CPG_ParseOptions(int *argc, char **argv, CPG_Options *options, std::string *message);

extern const char CPG_szUsage[];

#endif
