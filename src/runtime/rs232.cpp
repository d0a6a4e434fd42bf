// RS-232 library: a table of open ports, each with the bytes that came and were not
// taken yet. Nothing runs in the background; whoever asks for the queue fills it.
#include "runtime/rs232.h"

#include "platform/serial.h"

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int PORTS_MAX = 8;
constexpr size_t QUEUE_BYTES = 512; // the link asks for as much
constexpr double SECONDS_MAX = 1e6; // in milliseconds it still fits the port's time-outs
constexpr int DEVICE_NUMBER_MAX = 255;

struct Com {
    int port = 0;
    SER_Handle handle = SER_INVALID;
    unsigned timeoutMs = 5000;
    uint8_t queue[QUEUE_BYTES] = {};
    size_t head = 0, used = 0; // first byte not taken, bytes behind it
};
Com coms[PORTS_MAX];

Com *FindCom(int port)
{
    for (Com &com : coms) {
        if (com.handle != SER_INVALID && com.port == port)
            return &com;
    }
    return nullptr;
}

// "COM<n>" names the device of number n whatever number the caller gives the port;
// no name at all is the port's own number. Negative: no such name.
int DeviceNumber(int port, const char *deviceName)
{
    if (deviceName == nullptr || *deviceName == '\0')
        return port;
    if (std::strncmp(deviceName, "COM", 3) != 0 ||
        !std::isdigit(static_cast<unsigned char>(deviceName[3])))
        return -1;
    const long number = std::strtol(deviceName + 3, nullptr, 10);
    return number <= DEVICE_NUMBER_MAX ? static_cast<int>(number) : -1;
}

// Takes what arrived into the queue, waiting up to `waitMs` while the queue is empty.
// Bytes in the queue, or negative when the port is gone and nothing is left.
int Fill(Com *com, unsigned waitMs)
{
    if (com->used == 0)
        com->head = 0; // it need not be a ring: it runs empty between two answers
    const size_t room = QUEUE_BYTES - com->head - com->used;
    const int got = room == 0 ? 0
                              : SER_ReadSome(com->handle, com->queue + com->head + com->used, room,
                                             com->used == 0 ? waitMs : 0);
    if (got > 0)
        com->used += static_cast<size_t>(got);
    // What came before the port went away can still be read.
    return com->used == 0 && got < 0 ? COM_ERR_IO : static_cast<int>(com->used);
}

} // namespace

int OpenComConfig(int port, const char *deviceName, long baud, int parity, int dataBits,
                  int stopBits, int inputQueue, int outputQueue)
{
    constexpr char PARITY[] = {'n', 'o', 'e'};
    const int device = DeviceNumber(port, deviceName);
    Com *com = nullptr; // a free one
    for (Com &other : coms)
        if (com == nullptr && other.handle == SER_INVALID)
            com = &other;
    // The sizes of the queues are taken for granted: the system's and ours hold what a line can
    // bring between two reads.
    if (device < 0 || baud <= 0 || parity < 0 || parity > 2 || inputQueue < 0 || outputQueue < 0 ||
        FindCom(port) != nullptr || com == nullptr)
        return COM_ERR_ARGUMENT;
    SER_Settings settings;
    settings.baud = static_cast<uint32_t>(baud);
    settings.parity = PARITY[parity];
    settings.dataBits = dataBits;
    settings.stopBits = stopBits;
    Com fresh; // takes the place when all of it has succeeded
    fresh.port = port;
    if (SER_Open(device, &fresh.handle) != SER_OK)
        return COM_ERR_OPEN;
    if (SER_Configure(fresh.handle, settings) != SER_OK) {
        SER_Close(fresh.handle); // there, but no serial port
        return COM_ERR_OPEN;
    }
    SER_SetTimeouts(fresh.handle, fresh.timeoutMs, fresh.timeoutMs);
    *com = fresh;
    return 0;
}

int SetComTime(int port, double seconds)
{
    Com *com = FindCom(port);
    if (com == nullptr || !(seconds >= 0 && seconds < SECONDS_MAX))
        return COM_ERR_ARGUMENT;
    com->timeoutMs = static_cast<unsigned>(seconds * 1000.0 + 0.5); // 0 waits for nothing
    return SER_SetTimeouts(com->handle, com->timeoutMs, com->timeoutMs) == SER_OK ? 0 : COM_ERR_IO;
}

int ComWrt(int port, const void *bytes, size_t count)
{
    const Com *com = FindCom(port);
    if (com == nullptr)
        return COM_ERR_ARGUMENT;
    const int wrote = SER_Write(com->handle, bytes, count);
    return wrote >= 0 ? wrote : COM_ERR_IO;
}

int GetInQLen(int port)
{
    return WaitInQ(port, 0);
}

int WaitInQ(int port, unsigned waitMs)
{
    Com *com = FindCom(port);
    return com != nullptr ? Fill(com, waitMs) : COM_ERR_ARGUMENT;
}

int ComRdByte(int port)
{
    Com *com = FindCom(port);
    if (com == nullptr)
        return COM_ERR_ARGUMENT;
    // Only an empty queue is worth a call of the system.
    if (com->used == 0) {
        const int waiting = Fill(com, com->timeoutMs);
        if (waiting <= 0)
            return waiting < 0 ? waiting : COM_ERR_TIMEOUT;
    }
    --com->used;
    return com->queue[com->head++];
}

int FlushInQ(int port)
{
    Com *com = FindCom(port);
    if (com == nullptr)
        return COM_ERR_ARGUMENT;
    com->used = 0; // our part of the queue and the system's
    return SER_DropInput(com->handle) == SER_OK ? 0 : COM_ERR_IO;
}

int FlushOutQ(int port)
{
    const Com *com = FindCom(port);
    if (com == nullptr)
        return COM_ERR_ARGUMENT;
    return SER_DropOutput(com->handle) == SER_OK ? 0 : COM_ERR_IO;
}

int CloseCom(int port)
{
    Com *com = FindCom(port);
    if (com == nullptr)
        return COM_ERR_ARGUMENT;
    SER_Close(com->handle);
    *com = Com();
    return 0;
}
