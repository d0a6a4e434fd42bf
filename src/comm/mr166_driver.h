// What the files of the mr166 link share among themselves: the two drivers as rows of a
// table, and the hooks by which an exchange reports to the wire trace.
#ifndef COMM_MR166_DRIVER_H
#define COMM_MR166_DRIVER_H

#include <cstddef>
#include <cstdint>

struct Mr166_Driver {
    const char *name;
    int (*open)(int port, int baud);
    void (*close)();
    void (*dropQueues)(); // before a request: nothing old may be taken for its answer
    int (*frameOut)();
    bool (*isGone)(); // the open port's device is not there any more
    // What has arrived, waiting up to `waitMs` for the first byte; negative when the port is gone.
    int (*readSome)(char *buffer, size_t capacity, unsigned waitMs);
    int (*message)(int station, int command, uint32_t address, uint16_t word, const void *data);
};
const Mr166_Driver &MrASC_Driver(); // the selected one
int MrASC_PortNI();                 // port the run-time driver has open

// Called only while TRC_isOn. An exchange is recorded when it is over; the request is in
// the send buffer, the last-exchange fields are set.
void MrTRC_Begin();
void MrTRC_Received(const void *bytes, size_t count);
void MrTRC_End(bool isAnswerChecked, bool isEchoSkipped);
void MrTRC_Link(bool isOpening, int port, int baud, int result);

#endif
