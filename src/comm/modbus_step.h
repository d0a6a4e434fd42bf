// Whether the Modbus line is in step: whether the next answer can only be the answer to the
// next request. An RTU answer carries no number; of what it answers it tells the slave, the
// function and a length. A slave's line falls out of step with every request that was not
// answered well, with bytes nobody waited for and when the port is opened. Then only the very
// same request may be repeated (an answer to any repetition answers it), and before another
// one goes out the line is proven: by a read of target memory whose answer has a length that
// nothing outstanding has (answers come in order, so nothing older is left behind it), or, for
// plain registers of devices that have no such memory, by one time-out of silence.
// Only the master's own files call this.
#ifndef COMM_MODBUS_STEP_H
#define COMM_MODBUS_STEP_H

void MBMSTEP_Opened(); // a port was opened: what another program asked may still be answered

// Before the request in the send buffer goes out. 0, or the fault for which it must not:
// MBM_EX_SILENT after one time-out without an answer to the proof, and others.
int MBMSTEP_Ready();
void MBMSTEP_Sent();     // the request has gone out
void MBMSTEP_Answered(); // its answer came
void MBMSTEP_Strange();  // what came answers something else

#endif
