// What the Modbus master hears while it is not sure whose answer comes next: bytes are sorted
// into sound frames, and each is crossed off the book of open answers. Owns that book and what
// was heard of a frame that is not whole yet. Only modbus_step.cpp calls this.
#ifndef COMM_MODBUS_LISTEN_H
#define COMM_MODBUS_LISTEN_H

#include "comm/in_step.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

extern STEP_Line MBM_book;

void MBM_ForgetHeard(); // the port is another one

// The shape of the request that a sound answer may be the answer of; 0 for an exception to
// nothing that is open.
STEP_Shape MBM_ShapeOf(const uint8_t *answer);
// Books a sound answer that is not the one waited for. True when it was a probe's.
bool MBM_BookOther(const uint8_t *answer);
// Books bytes that are nobody's answer.
void MBM_BookBytes(int slave, const uint8_t *bytes, size_t count);
// Books what waits before a request goes out. 0, or MBM_FAULT_GONE.
int MBM_BookWaiting(int slave);

// Waits one time-out for an answer to the frame that was sent. `isWanted` is asked about each
// sound one and books those that it does not want. 0 and the answer, what came behind it
// booked; or the fault: MBM_EX_SILENT, MBM_EX_PART, MBM_EX_FOREIGN, MBM_FAULT_GONE or _ECHO.
int MBM_Listen(const uint8_t *sent, size_t count,
               const std::function<bool(const uint8_t *answer)> &isWanted,
               std::vector<uint8_t> *answer);

// Waits until one time-out has gone by in which nothing came; nothing is open any more then,
// and what came before is booked. 0, MBM_FAULT_GONE, or MBM_FAULT_STEP on a line that never
// falls silent.
int MBM_ProveBySilence(int slave);

#endif
