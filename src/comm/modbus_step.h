// Keeps the Modbus line in step, on the book of comm/in_step.h: an RTU answer carries no
// number, but slave, function and length, and for a write also its place. The line is proven
// by reads of target memory of varying length; for plain registers of devices that have no
// such memory, by one time-out of silence. Only the master's own files call this.
#ifndef COMM_MODBUS_STEP_H
#define COMM_MODBUS_STEP_H

#include <cstddef>
#include <cstdint>

void MBM_NoteOpened(); // a port was opened: what another program asked may still be answered

// Before the request in the send buffer goes out. 0, or the fault for which it must not:
// MBM_EX_SILENT after one time-out without an answer to the proof, and others.
int MBM_MakeReady();
void MBM_NoteSent(); // the request has gone out

// Whether its answer can be read as it comes. If not: waits for it among older ones and
// noise. Bytes of the answer put into `frame`, or 0 and *fault.
bool MBM_IsCalm();
int MBM_FindAnswer(uint8_t *frame, size_t room, int *fault);

void MBM_NoteAnswered();                                   // a good answer
void MBM_NoteRefused();                                    // a sound exception answer
void MBM_NoteOddBytes(const uint8_t *bytes, size_t count); // what came was not the answer

// Whether memory was read from this slave and nothing proves yet that it was not a repeated
// older answer; and whether that should be proven at once, because something odd was seen
// lately or the last proof is a second old.
bool MBM_IsProofDue(int slave);
bool MBM_IsSuspicious(int slave);
// 0, or a fault; at most `attempts` probes may stay unanswered.
int MBM_ProveBehind(int slave, int attempts);
void MBM_GiveUpProof(int slave);
// How many bytes a read must have, `least` to `most`, for its answer to be a proof; 0 when no
// number will do, or the line is in doubt.
uint32_t MBM_PickProving(int slave, uint32_t least, uint32_t most);
// One try of such a read of target memory. 0 and the bytes, proven like all that was read
// before; or a fault.
int MBM_ReadProving(int slave, uint32_t address, uint32_t count, uint8_t *bytes);
uint32_t MBM_CountSurplus(); // grows when more answers came than were asked for

#endif
