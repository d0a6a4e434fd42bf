// Programs a HEX file into a target's flash and knows at every moment what the flash holds:
// file checked, loader found, erased, programmed, read back and compared; after an
// interruption it goes on behind the last verified block. A job is the whole state; a window,
// the console and the console program show it and decide nothing themselves.
#ifndef LOADER_PROGRAM_H
#define LOADER_PROGRAM_H

#include "loader/job.h"
#include "loader/progress.h"

#include <cstdint>
#include <string>
#include <vector>

// Reads and checks the file; the job begins anew but keeps what is wished. 0 or LDR_ERR_...
int LDR_Prepare(LDR_Job *job, const std::string &path);
// Whether a run may go on behind the last verified block of an interrupted one.
bool LDR_CanResume(const LDR_Job &job);
// Borrows the port and runs the job, from the beginning or, with `isResume`, behind the last
// verified block. LDR_OK only when the flash holds the file and, if wished, was read back.
int LDR_Run(LDR_Job *job, bool isResume, int port, int baud, const LDR_Progress &progress);
// The same on a port that is open already.
int LDR_RunOnPort(LDR_Job *job, bool isResume, const LDR_Progress &progress);

// Borrows the port and compares the flash with the prepared file, changing nothing in it.
int LDR_Verify(LDR_Job *job, int port, int baud, const LDR_Progress &progress);
// The same on a port that is open already.
int LDR_VerifyOnPort(LDR_Job *job, const LDR_Progress &progress);
// Reads a stretch of memory through the loader. 0, LDR_ERR_TARGET, LDR_ERR_READ, LDR_ERR_CANCELLED.
int LDR_ReadMemory(uint32_t address, uint32_t count, std::vector<uint8_t> *bytes,
                   const LDR_Progress &progress);

// --- in words ---------------------------------------------------------------------------
constexpr char LDR_EQUAL[] = "read back and equal"; // in texts and in the bar
std::string LDR_GetResultText(const LDR_Job &job);  // how the last run ended
std::string LDR_GetFlashText(const LDR_Job &job);   // what the flash holds and what to do
// To be asked before erasing: names port, file and range.
std::string LDR_GetQuestion(const LDR_Job &job, int port);
const char *LDR_GetStepText(int step); // "Erase"

#endif
