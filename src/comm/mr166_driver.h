// What the files of the mr166 link share among themselves: the two drivers as rows, one
// exchange with its being in step, and the wire trace's hooks. Calls go one way: link (port,
// blocks) to exchange to driver.
#ifndef COMM_MR166_DRIVER_H
#define COMM_MR166_DRIVER_H

#include <cstddef>
#include <cstdint>

enum class Mr166_Ending {
    COMPLETE,    // something came that may be the answer, in Mr166_abyRcv
    WRONG_START, // its first character is no answer's, in Mr166_abyRcv
    TIME_OUT,    // not in time; what came of it is in Mr166_abyRcv
    GONE,        // the device is not there any more
};

struct Mr166_Driver {
    const char *name;
    int badArgument;    // result of a message with one
    bool isEchoSkipped; // whether the line may echo what is sent
    int (*open)(int port, int baud);
    void (*close)();
    void (*clearOutput)(); // before a request
    int (*waiting)();      // bytes that have arrived; negative when the port is gone
    int (*frameOut)();     // the send buffer; negative on failure
    // What has arrived, waiting up to `waitMs` for the first byte; negative when the port is gone.
    int (*readSome)(char *buffer, size_t capacity, unsigned waitMs);
    // The answer of `expected` characters on a line that is in step. Sets cbRcv.
    Mr166_Ending (*readAnswer)(size_t expected, bool *isEchoSeen);
};
extern const Mr166_Driver MR166_DRIVER_WIN32, MR166_DRIVER_RUNTIME;
const Mr166_Driver &MrASC_Driver(); // the selected one

// --- one exchange (mr166_exchange.cpp) ------------------------------------------------
struct Mr166_Request {
    int station, command;
    uint32_t address;
    uint16_t word; // count of commands 0 and 8, else the value sent
    const void *data;
};
void Mr166_NoteOpened(); // whatever comes now answers nothing of ours
// One try. The first one of a request proves the line to be in step where it must; up to
// `probes` of them may stay unanswered. 1 answered, 0 failed, or the driver's badArgument.
int Mr166_TryFirst(const Mr166_Driver &driver, const Mr166_Request &request, int probes);
// The same request again: an answer to any of its tries will do.
int Mr166_TryAgain(const Mr166_Driver &driver, const Mr166_Request &request);
bool Mr166_WasSent();                 // whether the last first try came to sending its request
uint32_t Mr166_FailedProbes();        // since the program started
uint32_t Mr166_CountSurplus();        // changes when what was read lately must be read again
bool Mr166_IsProofDue(int station);   // something was read there and not proven since
bool Mr166_IsSuspicious(int station); // ... and it should be before it is used
// Puts a proof behind everything read from the station. 0, negative: it was not answered.
int Mr166_ProveBehind(int station, int probes);
void Mr166_GiveUpProof(int station); // what was read there is not used
// How long a read must be, in units of so many bytes, for its answer to be a proof; 0 when no
// length will do, or the line is in doubt.
uint32_t Mr166_PickProving(int station, uint32_t unit, uint32_t least, uint32_t most);
// One try of such a read. 1 and the bytes, proven like all that was read before; 0.
int Mr166_ReadProving(int station, uint32_t address, uint16_t count, void *buffer);

// --- called only while TRC_isOn (mr166_trace.cpp) --------------------------------------
// An exchange is recorded when it is over; its frame is in the send buffer.
void Mr166_BeginTrace(const Mr166_Request &request, bool isProbe);
void Mr166_TraceReceived(const void *bytes, size_t count);
void Mr166_EndTrace(bool isAnswerChecked, bool isEchoSeen);
void Mr166_TraceLink(bool isOpening, int port, int baud, int result);

#endif
