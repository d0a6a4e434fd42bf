// What the bar of the loader window shows: the file's ranges in the target's address space,
// and how far each has come.
#ifndef LOADER_WINDOW_BAR_H
#define LOADER_WINDOW_BAR_H

#include "loader/job.h"
#include "runtime/userint.h"

// Bytes from address 0 on that the bar stands for: a power of two that holds the file.
uint32_t LDB_GetSpan(const LDR_Job &job);
// Ranges too close to be told apart on a screen are one segment. At most UI_SEGMENTS_MAX.
std::vector<UI_Segment> LDB_MakeSegments(const LDR_Job &job);

#endif
