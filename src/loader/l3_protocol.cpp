// Each command: build the request in the queue, send it in one write, read the whole answer
// in one read, compare. A finished exchange goes to the wire trace when somebody looks, a
// failed one is counted by its cause.
#include "loader/l3_protocol.h"

#include "comm/failures.h"
#include "comm/mr166_link.h"
#include "comm/trace.h"
#include "text/words.h"

#include <cstring>

uint8_t LD167U_abySendBuffer[LD167U_QUEUE_BYTES] = {};
int32_t LD167U_cnSendBuffer = 0;
uint8_t LD167U_byChkSum = 0;
L3_Fault LD167U_enFault = L3_FAULT_NONE;

namespace {

constexpr uint8_t CMD_WRITE = 0x03, CMD_READ = 0x04;
constexpr uint8_t ERASE_REQUEST[] = {0x5E, 0xAA, 0x55, 0xAA};
constexpr uint8_t ERASE_DONE = 0xE5;
constexpr int ERASE_READS_MAX = 21; // of a second each, by LD167U_TIMEOUT_MS
// Two registers of the processor that always read as zeros and ones.
constexpr uint32_t TEST_ADDRESS = 0xFF1C;
constexpr uint8_t TEST_BYTES[] = {0x00, 0x00, 0xFF, 0xFF};

constexpr const char *FAULT_TEXTS[] = {
    "done",
    FAIL_NOT_OPEN,
    "not a block the loader can carry",
    FAIL_GONE,
    FAIL_NOT_SENT,
    FAIL_NO_ANSWER,
    "answer broke off",
    "wrong check sum",
    "wrong answer",
};

TRC_Record exchange;  // the command being recorded
int wrongAnswer = -1; // -1: of several bytes

int Fail(L3_Fault fault)
{
    LD167U_enFault = fault;
    return -1;
}

void AddToSum(const void *bytes, int count)
{
    const auto *byte = static_cast<const uint8_t *>(bytes);
    for (int i = 0; i < count; ++i)
        LD167U_byChkSum = static_cast<uint8_t>(LD167U_byChkSum + byte[i]);
}

void BeginExchange(const char *verb, uint32_t count, uint32_t address)
{
    LD167U_enFault = L3_FAULT_NONE;
    // Texts are made for a trace that somebody looks at, not for each of thousands of blocks.
    if (!TRC_isOn)
        return;
    exchange = TRC_Record();
    exchange.request = std::string("loader: ") + verb;
    if (count > 0)
        exchange.request += TXT_Format(" %u bytes at 0x%06X", count, address);
    exchange.startUs = PLT_TickUs();
    PLT_LocalTime(&exchange.when);
}

// To the statistics and the trace; gives `result` back.
int EndExchange(int result)
{
    if (result < 0)
        FAIL_Note("loader: " + LD167U_GetFaultText());
    if (TRC_isOn) {
        exchange.durationUs = static_cast<uint32_t>(PLT_TickUs() - exchange.startUs);
        exchange.isGood = result == 0;
        exchange.result = LD167U_GetFaultText();
        TRC_Add(exchange);
    }
    return result;
}

bool IsUsable(const IHEX167_Block *block)
{
    return IHEX167_Is_block_ok(block) && block->address < IHEX167_ADDRESS_END;
}

// Command, length and the three bytes of the address, low byte first.
void QueueHead(uint8_t command, const IHEX167_Block &block)
{
    LD167U_byChkSum = 0;
    LD167U_ClearQueue();
    LD167U_QueueByte(command);
    LD167U_QueueByte(static_cast<uint8_t>(block.length));
    for (int shift = 0; shift < 24; shift += 8)
        LD167U_QueueByte(static_cast<uint8_t>(block.address >> shift));
}

int ReadBlock(IHEX167_Block *block)
{
    if (!IsUsable(block))
        return Fail(L3_FAULT_ARGUMENT);
    QueueHead(CMD_READ, *block);
    if (LD167U_SendQueue() < 0)
        return -1;
    uint8_t sum = LD167U_byChkSum; // the target adds what it answers to what it was asked
    uint8_t answer[IHEX167_DATA_MAX + 1];
    if (LD167U_ReadBytes(answer, block->length + 1) < 0)
        return -1;
    for (int i = 0; i < block->length; ++i)
        sum = static_cast<uint8_t>(sum + answer[i]);
    std::memcpy(block->data, answer, block->length);
    return answer[block->length] == sum ? 0 : Fail(L3_FAULT_CHECKSUM);
}

int WriteBlock(const IHEX167_Block *block)
{
    if (!IsUsable(block))
        return Fail(L3_FAULT_ARGUMENT);
    QueueHead(CMD_WRITE, *block);
    // Queued whole before the first byte goes: what does not fit is refused and nothing is sent.
    for (int i = 0; i < block->length; ++i)
        if (LD167U_QueueByte(block->data[i]) < 0)
            return Fail(L3_FAULT_ARGUMENT);
    if (LD167U_SendQueue() < 0)
        return -1;
    const uint8_t sum = LD167U_byChkSum; // the answer is added to it when it comes
    const int answer = LD167U_ReadByte();
    if (answer < 0)
        return -1;
    return answer == sum ? 0 : Fail(L3_FAULT_CHECKSUM);
}

} // namespace

// The handle is looked up at each call: the link may have opened another one meanwhile.
const LD167U_Port LD167U_SerialPort = {
    [](const void *bytes, size_t count) { return SER_Write(MR166_hCom, bytes, count); },
    [](void *buffer, size_t count) { return SER_Read(MR166_hCom, buffer, count); },
    [] { return SER_DropInput(MR166_hCom); },
    [](unsigned readMs, unsigned writeMs) { return SER_SetTimeouts(MR166_hCom, readMs, writeMs); }};
const LD167U_Port *LD167U_pPort = &LD167U_SerialPort;

int LD167U_ReadBytes(void *buffer, int n)
{
    if (!wMrOpenFlag)
        return Fail(L3_FAULT_CLOSED);
    if (buffer == nullptr || n < 0)
        return Fail(L3_FAULT_ARGUMENT);
    const int got = LD167U_pPort->read(buffer, static_cast<size_t>(n));
    if (got < 0)
        return Fail(L3_FAULT_GONE);
    // What came counts also when it was not all: the trace shows where an answer broke off.
    AddToSum(buffer, got);
    if (TRC_isOn)
        TRC_Append(&exchange.received, buffer, static_cast<size_t>(got));
    if (got == n)
        return 0;
    return Fail(got == 0 ? L3_FAULT_SILENT : L3_FAULT_SHORT);
}

int LD167U_ReadByte()
{
    uint8_t byte = 0;
    return LD167U_ReadBytes(&byte, 1) < 0 ? -1 : byte;
}

int LD167U_WriteByte(uint8_t byte)
{
    return LD167U_WriteBytes(&byte, 1);
}

int LD167U_WriteBytes(const void *bytes, int n)
{
    if (!wMrOpenFlag)
        return Fail(L3_FAULT_CLOSED);
    if (bytes == nullptr || n < 0)
        return Fail(L3_FAULT_ARGUMENT);
    const int sent = LD167U_pPort->write(bytes, static_cast<size_t>(n));
    if (sent < 0)
        return Fail(L3_FAULT_GONE);
    AddToSum(bytes, sent);
    if (TRC_isOn)
        TRC_Append(&exchange.sent, bytes, static_cast<size_t>(sent));
    return sent == n ? 0 : Fail(L3_FAULT_SEND);
}

void LD167U_ClearQueue()
{
    LD167U_cnSendBuffer = 0;
}

int LD167U_QueueByte(uint8_t byte)
{
    if (LD167U_cnSendBuffer >= static_cast<int32_t>(LD167U_QUEUE_BYTES))
        return -1;
    LD167U_abySendBuffer[LD167U_cnSendBuffer++] = byte;
    return 0;
}

int LD167U_SendQueue()
{
    // Emptied whatever comes of it: half a request must not stand in front of the next one.
    const int count = LD167U_cnSendBuffer;
    LD167U_cnSendBuffer = 0;
    if (count < 1 || count > static_cast<int>(LD167U_QUEUE_BYTES))
        return Fail(L3_FAULT_ARGUMENT);
    return LD167U_WriteBytes(LD167U_abySendBuffer, count);
}

int LD167U_SetTimeouts()
{
    LD167U_pPort->setTimeouts(LD167U_TIMEOUT_MS, LD167U_TIMEOUT_MS);
    return 0;
}

int LD167U_L3CmdReadBlock(IHEX167_Block *block)
{
    BeginExchange("read", block != nullptr ? block->length : 0u,
                  block != nullptr ? block->address : 0u);
    return EndExchange(ReadBlock(block));
}

int LD167U_L3CmdWriteBlock(const IHEX167_Block *block)
{
    BeginExchange("write", block != nullptr ? block->length : 0u,
                  block != nullptr ? block->address : 0u);
    return EndExchange(WriteBlock(block));
}

int LD167U_L3Test()
{
    LD167U_SetTimeouts();
    LD167U_pPort->dropInput();
    IHEX167_Block block;
    block.address = TEST_ADDRESS;
    block.length = sizeof TEST_BYTES;
    if (LD167U_L3CmdReadBlock(&block) < 0)
        return -1;
    // Four wrong bytes are no single one that could be shown.
    wrongAnswer = -1;
    return std::memcmp(block.data, TEST_BYTES, sizeof TEST_BYTES) == 0 ? 0 : Fail(L3_FAULT_ANSWER);
}

int LD167U_L3CmdEraseFlash(const LDR_Progress &progress)
{
    LD167U_SetTimeouts();
    BeginExchange("erase", 0, 0);
    // The one request that goes out in single bytes, and whose answer bears no sum.
    for (const uint8_t byte : ERASE_REQUEST)
        if (LD167U_WriteByte(byte) < 0)
            return EndExchange(-1);
    for (int i = 0; i < ERASE_READS_MAX; ++i) {
        const int answer = LD167U_ReadByte();
        // A target busy erasing may say 0 meanwhile, which is as little an answer as silence.
        if (answer > 0) {
            wrongAnswer = answer;
            // Silent reads before it have left their fault behind.
            LD167U_enFault = answer == ERASE_DONE ? L3_FAULT_NONE : L3_FAULT_ANSWER;
            return EndExchange(answer == ERASE_DONE ? 0 : -2);
        }
        LDR_Step(progress, 0, 0,
                 TXT_Format("Erasing, %d of at most %d s", i + 1, ERASE_READS_MAX).c_str());
    }
    // A port that has vanished says more than that nobody answered.
    if (LD167U_enFault != L3_FAULT_GONE)
        LD167U_enFault = L3_FAULT_SILENT;
    return EndExchange(-3);
}

std::string LD167U_GetFaultText()
{
    std::string text = FAULT_TEXTS[LD167U_enFault];
    if (LD167U_enFault == L3_FAULT_ANSWER && wrongAnswer >= 0)
        text += TXT_Format(" 0x%02X", static_cast<unsigned>(wrongAnswer));
    return text;
}
