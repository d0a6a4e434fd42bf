// The state of a programming: what is wished, where it stands and how it ended. Plain data;
// program.h runs it, whoever shows it reads it.
#ifndef LOADER_JOB_H
#define LOADER_JOB_H

#include "loader/hex_file.h"

#include <cstdint>
#include <string>
#include <vector>

enum LDR_Step { LDR_STEP_FILE, LDR_STEP_TARGET, LDR_STEP_ERASE, LDR_STEP_PROGRAM, LDR_STEP_VERIFY };
constexpr int LDR_STEPS = 5;
enum LDR_StepState { LDR_WAITING, LDR_LEFT_OUT, LDR_RUNNING, LDR_DONE, LDR_FAILED };

// What is known about the flash.
enum LDR_Flash {
    LDR_FLASH_UNTOUCHED, // nothing has been done to it
    LDR_FLASH_ERASING,   // an erase was asked for and not confirmed
    LDR_FLASH_ERASED,
    LDR_FLASH_PARTLY,   // holds a part of the file
    LDR_FLASH_WHOLE,    // holds all of the file
    LDR_FLASH_UNUSABLE, // holds what only an erase can change
};

enum LDR_Result {
    LDR_OK = 0,
    LDR_ERR_OPEN = -1,     // the file cannot be read
    LDR_ERR_PROBLEMS = -2, // the file must not be programmed: HEX_File::problems
    LDR_ERR_PORT = -3,     // no port
    LDR_ERR_TARGET = -4,   // no loader answers
    LDR_ERR_ERASE = -5,
    LDR_ERR_WRITE = -6,
    LDR_ERR_READ = -7,      // reading back failed
    LDR_ERR_DIFFERENT = -8, // what was read back is not what was written
    LDR_ERR_NEEDS_ERASE = -9,
    LDR_ERR_CANCELLED = -10,
    LDR_ERR_CHANGED = -11, // the file on the disk is not the one that was checked
};

// The address behind a block.
inline uint32_t LDR_GetEnd(const HEX_Record &block)
{
    return block.address + block.length;
}

struct LDR_Difference {
    uint32_t address = 0;
    uint8_t wanted = 0, found = 0;
};

struct LDR_Job {
    // What is wished; read when a run begins. Without erasing, all of the flash that the file
    // fills is read first and only what differs is written.
    bool isErase = true;
    bool isVerify = true;

    // From LDR_Prepare.
    HEX_File file;
    std::vector<HEX_Record> plan; // blocks to write, ascending, each fit for one command

    // Where it stands; a window reads these in LDR_Progress::step.
    LDR_StepState steps[LDR_STEPS] = {};
    LDR_Flash flash = LDR_FLASH_UNTOUCHED;
    size_t written = 0;          // blocks of the plan the target has accepted, from the first on
    size_t verified = 0;         // ... read back and found equal
    uint32_t bytesDone = 0;      // moved in this run, in both directions
    uint32_t bytesTotal = 0;     // to be moved in this run
    uint32_t bytesPerSecond = 0; // 0 = not known yet
    uint32_t secondsLeft = 0;

    // How the last run ended.
    int result = LDR_OK;
    std::string cause;            // of the loader or the port, in words
    uint32_t causeAddress = 0;    // of the block at which it stopped
    LDR_Difference difference;    // LDR_ERR_DIFFERENT and LDR_ERR_NEEDS_ERASE
    bool isReadBack = false;      // success means that all of the file was read back
    bool isStrayPossible = false; // a damaged write may have gone to another address
};

#endif
