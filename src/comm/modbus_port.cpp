// The master's port: opening, closing, sending a frame and reading bytes of an answer. A frame
// goes out only once the line is in step, so whoever sends may wait for a proof here.
#include "comm/failures.h"
#include "comm/modbus.h"
#include "comm/modbus_line.h"
#include "comm/modbus_step.h"
#include "comm/trace.h"
#include "platform/system.h"

int32_t MBM_isOpen = 0;
SER_Handle MBM_hCom = SER_INVALID;
uint32_t MBM_dwBaudrate = 19200;
int32_t MBM_isEcho = 0;
uint32_t MBM_nTimeoutMs = 400;
int32_t MBM_nFault = 0;
int32_t MBM_cnLastSend = 0;
uint8_t MBM_abySnd[MBM_FRAME_ROOM], MBM_abyRcv[MBM_FRAME_ROOM];

namespace {

constexpr int PORT_MAX = 255;
constexpr int CRC_BYTES = 2;
constexpr int FRAME_MAX = static_cast<int>(MBM_FRAME_ROOM) - 1; // as the lengths are checked
constexpr uint16_t CRC_START = 0xFFFF, CRC_POLYNOMIAL = 0xA001;

int portNumber = 0; // of the open port, for the trace

// One step of eight bits for each value of the low byte.
struct CrcTable {
    uint16_t step[256];
    CrcTable()
    {
        for (unsigned value = 0; value < 256; ++value) {
            unsigned crc = value;
            for (int bit = 0; bit < 8; ++bit)
                crc = (crc & 1u) != 0 ? crc >> 1 ^ CRC_POLYNOMIAL : crc >> 1;
            step[value] = static_cast<uint16_t>(crc);
        }
    }
};

// 0, or an MBM_ERR_ with whatever was opened still open.
int OpenDevice(int port, int baud, int parity)
{
    if (port < 0 || port > PORT_MAX)
        return MBM_ERR_PORT;
    if (SER_Open(port, &MBM_hCom) != SER_OK)
        return MBM_ERR_OPEN;
    // Eight data bits and one stop bit are the defaults; no baud rate is left to the device
    // to refuse.
    SER_Settings settings;
    settings.baud = baud > 0 ? static_cast<uint32_t>(baud) : 0u;
    settings.parity = parity == MBM_PARITY_EVEN ? 'e' : parity == MBM_PARITY_ODD ? 'o' : 'n';
    const int result = SER_Configure(MBM_hCom, settings);
    if (result == SER_OK && SER_SetTimeouts(MBM_hCom, MBM_nTimeoutMs, MBM_nTimeoutMs) == SER_OK)
        return 0;
    return result == SER_ERR_GET ? MBM_ERR_GET : MBM_ERR_SET;
}

void CloseDevice()
{
    MBM_isOpen = 0;
    SER_Close(MBM_hCom);
    MBM_hCom = SER_INVALID;
}

} // namespace

const MBM_Line MBM_SERIAL_LINE = {
    [](const void *bytes, size_t count) { return SER_Write(MBM_hCom, bytes, count); },
    [](void *buffer, size_t count) { return SER_Read(MBM_hCom, buffer, count); },
    [](void *buffer, size_t capacity, unsigned waitMs) {
        return SER_ReadSome(MBM_hCom, buffer, capacity, waitMs);
    },
    [] { return SER_BytesWaiting(MBM_hCom); },
    [] { return SER_DropInput(MBM_hCom); },
    PLT_TickMs,
};
const MBM_Line *MBM_line = &MBM_SERIAL_LINE;

int MBM_Refuse(int fault)
{
    MBM_nFault = fault;
    FAIL_Note(MBM_ErrorText(fault));
    return MBM_FAILED;
}

int MBM_Open(int port, int baud, int parity)
{
    // A port is opened exclusively: the same one could not be had twice.
    if (MBM_isOpen)
        MBM_Close();
    const int result = OpenDevice(port, baud, parity);
    // Half-opened is closed: the next attempt finds the port free.
    if (result != 0)
        CloseDevice();
    MBM_nFault = result;
    if (result != 0)
        FAIL_Note(MBM_ErrorText(result));
    portNumber = port;
    MBM_dwBaudrate = baud > 0 ? static_cast<uint32_t>(baud) : 0u;
    if (result == 0)
        MBM_isOpen = 1;
    // Also after a failure: whatever was in the book belonged to the port before.
    MBM_NoteOpened();
    if (TRC_isOn)
        MBM_TraceLink(true, port, result);
    return result;
}

void MBM_Close()
{
    if (MBM_isOpen && TRC_isOn)
        MBM_TraceLink(false, portNumber, 0);
    CloseDevice();
}

bool MBM_IsGone()
{
    // Asking for the bytes that wait is the cheapest way to learn that the device has gone.
    return MBM_isOpen && MBM_line->waiting() < 0;
}

uint16_t MBM_GetCRC(const void *bytes, size_t length)
{
    static const CrcTable table;
    const uint8_t *byte = static_cast<const uint8_t *>(bytes);
    unsigned crc = CRC_START;
    for (size_t i = 0; i < length; ++i)
        crc = crc >> 8 ^ table.step[(crc ^ byte[i]) & 0xFF];
    return static_cast<uint16_t>(crc);
}

int MBM_IsRcvCRC_Ok(int length)
{
    // Also keeps the index below inside of the buffer, whatever a slave announced.
    if (length < CRC_BYTES || length > FRAME_MAX)
        return 0;
    const size_t count = static_cast<size_t>(length) - CRC_BYTES;
    const unsigned sent = MBM_abyRcv[count] | static_cast<unsigned>(MBM_abyRcv[count + 1]) << 8;
    return MBM_GetCRC(MBM_abyRcv, count) == sent ? 1 : 0;
}

int MBM_SendFrame(int length)
{
    MBM_cnLastSend = 0;
    if (!MBM_isOpen)
        return MBM_Refuse(MBM_FAULT_CLOSED);
    if (length < 0 || length > FRAME_MAX - CRC_BYTES)
        return MBM_Refuse(MBM_FAULT_ARGUMENT);
    const auto count = static_cast<size_t>(length);
    const uint16_t crc = MBM_GetCRC(MBM_abySnd, count);
    MBM_abySnd[count] = static_cast<uint8_t>(crc);
    MBM_abySnd[count + 1] = static_cast<uint8_t>(crc >> 8);
    MBM_cnLastSend = length + CRC_BYTES;
    // The frame stands in the buffer while the line is proven: probes have one of their own.
    const int unready = MBM_MakeReady();
    if (unready != 0) {
        MBM_cnLastSend = 0;
        return MBM_Fail(unready, MBM_EX_SILENT);
    }
    if (TRC_isOn)
        MBM_BeginTrace(MBM_abySnd, count + CRC_BYTES, false);
    MBM_NoteSent(); // also when only a part goes out: it may be answered
    if (MBM_line->write(MBM_abySnd, count + CRC_BYTES) == MBM_cnLastSend)
        return 0;
    MBM_cnLastSend = 0;
    MBM_Refuse(MBM_IsGone() ? MBM_FAULT_GONE : MBM_FAULT_SEND);
    if (TRC_isOn)
        MBM_EndTrace(false, MBM_nFault);
    return MBM_FAILED;
}

int MBM_Read(int offset, int count)
{
    const bool isInside = offset >= 0 && count >= 0 && count <= FRAME_MAX &&
                          offset + count <= static_cast<int>(MBM_FRAME_ROOM);
    if (!MBM_isOpen || !isInside)
        return MBM_FAILED;
    const int got = MBM_line->read(MBM_abyRcv + offset, static_cast<size_t>(count));
    if (got > 0 && TRC_isOn)
        MBM_TraceReceived(MBM_abyRcv + offset, static_cast<size_t>(got));
    return got < 0 ? MBM_FAILED : got;
}
