// State of the mr166 link, opening and closing with either driver, block transfers.
#include "comm/mr166_link.h"

#include "comm/failures.h"
#include "comm/mr166_driver.h"
#include "comm/mr166_late.h"
#include "comm/trace.h"
#include "runtime/rs232.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

uint16_t wMrOpenFlag = 0;
int32_t MR166_isWin32 = 0;
SER_Handle MR166_hCom = SER_INVALID;
int32_t MrASC_nCom = 1;
int32_t MrASC_nBaudRate = 19200;
int16_t Mr166_CnBlkRpt = 3;
int16_t Mr166_wComDbg = 0;
uint32_t Mr166_nTimeoutMs = 400;
uint32_t EC_dwBlkRpt = 0;

namespace {

constexpr int PORT_MAX_WIN32 = 255, PORT_MAX_NI = 98;
constexpr int QUEUE_BYTES = 512;
constexpr int NI_PARITY_NONE = 0, DATA_BITS = 8, STOP_BITS = 2;

int portNI = 0; // what the run-time driver opened, whatever the settings say by now

void DropQueuesWin32()
{
    SER_FlushOutput(MR166_hCom);
    SER_DropInput(MR166_hCom);
}

void DropQueuesNI()
{
    FlushInQ(portNI);
    FlushOutQ(portNI);
}

int FrameOutWin32()
{
    if (!wMrOpenFlag)
        return -1;
    return SER_Write(MR166_hCom, Mr166_abySnd, cbSnd) == cbSnd ? 0 : -1;
}

int FrameOutNI()
{
    return wMrOpenFlag ? ComWrt(portNI, Mr166_abySnd, cbSnd) : -1;
}

bool IsGoneWin32()
{
    return SER_BytesWaiting(MR166_hCom) < 0;
}

bool IsGoneNI()
{
    return GetInQLen(portNI) < 0;
}

int ReadSomeWin32(char *buffer, size_t capacity, unsigned waitMs)
{
    return SER_ReadSome(MR166_hCom, buffer, capacity, waitMs);
}

int ReadSomeNI(char *buffer, size_t capacity, unsigned waitMs)
{
    const int waiting = WaitInQ(portNI, waitMs);
    int count = 0;
    while (count < waiting && static_cast<size_t>(count) < capacity)
        buffer[count++] = static_cast<char>(ComRdByte(portNI));
    return waiting < 0 ? waiting : count;
}

constexpr Mr166_Driver DRIVERS[] = {
    {"run-time driver", MrASC_OpenNI, MrASC_CloseNI, DropQueuesNI, FrameOutNI, IsGoneNI, ReadSomeNI,
     mr166MessageNI},
    {"Win32 driver", MrASC_OpenWin32, MrASC_CloseWin32, DropQueuesWin32, FrameOutWin32, IsGoneWin32,
     ReadSomeWin32, mr166MessageWin32},
};

int ConfigureWin32(int baud)
{
    SER_Settings settings;
    settings.baud = baud > 0 ? static_cast<uint32_t>(baud) : 0u;
    settings.dataBits = DATA_BITS;
    settings.stopBits = STOP_BITS;
    switch (SER_Configure(MR166_hCom, settings)) {
    case SER_OK:
        return 0;
    case SER_ERR_GET:
        return MR166_ERR_GET;
    default:
        return MR166_ERR_SET;
    }
}

bool ExchangeBlock(int station, int command, uint32_t address, uint16_t count, const void *data)
{
    for (int left = Mr166_CnBlkRpt; left >= 0; --left) {
        if (mr166Message(station, command, address, count, data) == 1) {
            // Fewer bytes than asked for must not be filled up with those of an older answer.
            if (command != MR166_CMD_READ || cnRcvData == count)
                return true;
            MrLATE_Missed();
            Mr166_nFault = MR166_FAULT_COUNT;
            FAIL_Note(MrASC_ErrorText(Mr166_nFault));
        }
        ++EC_dwBlkRpt;
    }
    return false;
}

bool ReadBlock(int station, uint32_t address, uint16_t count, void *buffer)
{
    if (!ExchangeBlock(station, MR166_CMD_READ, address, count, nullptr))
        return false;
    std::memcpy(buffer, Mr166_abyRcvData, count);
    return true;
}

bool WriteBlock(int station, uint32_t address, uint16_t count, const void *data)
{
    return ExchangeBlock(station, MR166_CMD_WRITE, address, count, data);
}

uint16_t BlockOf(uint32_t count, uint16_t most)
{
    return static_cast<uint16_t>(std::min<uint32_t>(count, most));
}

template <typename Byte>
int Advance(uint32_t block, uint32_t most, uint32_t *address, uint32_t *count, Byte **bytes)
{
    *address += block;
    *count -= block;
    *bytes += block;
    return block < most ? 1 : 0;
}

} // namespace

const Mr166_Driver &MrASC_Driver()
{
    return DRIVERS[MR166_isWin32 ? 1 : 0];
}

int MrASC_PortNI()
{
    return portNI;
}

int MrASC_UseWin32(int flag)
{
    const int32_t isWin32 = flag != 0 ? 1 : 0;
    const bool isReopening = wMrOpenFlag && isWin32 != MR166_isWin32;
    if (isReopening)
        MrASC_Close();
    MR166_isWin32 = isWin32;
    return isReopening ? MrASC_Open(MrASC_nCom, MrASC_nBaudRate) : 0;
}

int MrASC_Open(int port, int baud)
{
    if (wMrOpenFlag)
        MrASC_Close();
    const int result = MrASC_Driver().open(port, baud);
    if (result == 0) {
        MrASC_nCom = port;
        MrASC_nBaudRate = baud;
    }
    Mr166_nFault = result;
    if (result != 0)
        FAIL_Note(MrASC_ErrorText(result));
    if (TRC_isOn)
        MrTRC_Link(true, port, baud, result);
    return result;
}

int MrASC_OpenWin32(int port, int baud)
{
    if (wMrOpenFlag)
        MrASC_Close();
    if (port < 0 || port > PORT_MAX_WIN32)
        return MR166_ERR_PORT;
    if (SER_Open(port, &MR166_hCom) != SER_OK)
        return MR166_ERR_OPEN;
    const int result = ConfigureWin32(baud);
    if (result != 0) {
        MrASC_CloseWin32();
        return result;
    }
    SER_SetTimeouts(MR166_hCom, Mr166_nTimeoutMs, Mr166_nTimeoutMs);
    wMrOpenFlag = 1;
    return 0;
}

int MrASC_OpenNI(int port, int baud)
{
    if (port < 0 || port > PORT_MAX_NI)
        return MR166_ERR_PORT;
    char device[16];
    std::snprintf(device, sizeof device, "COM%d", port);
    if (OpenComConfig(port, device, baud, NI_PARITY_NONE, DATA_BITS, STOP_BITS, QUEUE_BYTES,
                      QUEUE_BYTES) < 0)
        return MR166_ERR_OPEN_NI;
    portNI = port;
    SetComTime(port, Mr166_nTimeoutMs / 1000.0);
    wMrOpenFlag = 1;
    return 0;
}

void MrASC_Close()
{
    if (wMrOpenFlag && TRC_isOn)
        MrTRC_Link(false, MrASC_nCom, MrASC_nBaudRate, 0);
    MrASC_Driver().close();
}

void MrASC_CloseWin32()
{
    wMrOpenFlag = 0;
    SER_Close(MR166_hCom);
    MR166_hCom = SER_INVALID;
}

void MrASC_CloseNI()
{
    wMrOpenFlag = 0;
    CloseCom(portNI);
}

int MrASC_IsOpened()
{
    return wMrOpenFlag ? 1 : 0;
}

int MrFrameOut()
{
    return MrASC_Driver().frameOut();
}

int Mr166_Read(int station, uint32_t address, uint32_t count, void *buffer)
{
    uint8_t *bytes = static_cast<uint8_t *>(buffer);
    while (count > 0) {
        const uint16_t block = BlockOf(count, MR166_READ_MAX);
        if (!ReadBlock(station, address, block, bytes))
            return -1;
        Advance(block, MR166_READ_MAX, &address, &count, &bytes);
    }
    return 0;
}

int Mr166_Write(int station, uint32_t address, uint32_t count, const void *data)
{
    const uint8_t *bytes = static_cast<const uint8_t *>(data);
    while (count > 0) {
        const uint16_t block = BlockOf(count, MR166_WRITE_MAX);
        if (!WriteBlock(station, address, block, bytes))
            return -1;
        Advance(block, MR166_WRITE_MAX, &address, &count, &bytes);
    }
    return 0;
}

int Mr166_ReadBg(int station, uint32_t *address, uint32_t *count, uint8_t **buffer)
{
    const uint16_t block = BlockOf(*count, MR166_READ_MAX);
    if (!ReadBlock(station, *address, block, *buffer))
        return -1;
    return Advance(block, MR166_READ_MAX, address, count, buffer);
}

int Mr166_WriteBg(int station, uint32_t *address, uint32_t *count, const uint8_t **data)
{
    const uint16_t block = BlockOf(*count, MR166_WRITE_MAX);
    if (!WriteBlock(station, *address, block, *data))
        return -1;
    return Advance(block, MR166_WRITE_MAX, address, count, data);
}
