// Building and checking of mr166 frames. The check value shifts the data bits into the
// register instead of combining them with its top bit; the tables below do eight or
// sixteen steps of that rule at once.
#include "comm/mr166_frame.h"

#include <array>
#include <cstring>

char Mr166_abySnd[MR166_LONG_CHARS];
uint16_t cbSnd = 0;
char Mr166_abyRcv[MR166_ANSWER_ROOM];
uint16_t cbRcv = 0;
uint8_t Mr166_abyRcvData[MR166_READ_MAX];

namespace {

constexpr uint16_t CRC_INITIAL = 0x0001, CRC_FEEDBACK = 0x1083;
constexpr uint8_t PADDING = 0xA5;
constexpr char DIGITS[] = "0123456789ABCDEF";

// Positions in frames.
constexpr size_t ANSWER_COUNT = 3, ANSWER_DATA = 5;
constexpr uint16_t TAIL_CHARS = 5; // check value and end character

// What the register's high byte becomes after eight shifts.
constexpr std::array<uint16_t, 256> MakeShiftTable()
{
    std::array<uint16_t, 256> table{};
    for (unsigned high = 0; high < 256; ++high) {
        unsigned value = high << 8;
        for (int bit = 0; bit < 8; ++bit)
            value = ((value << 1) & 0xFFFFu) ^ ((value & 0x8000u) != 0 ? CRC_FEEDBACK : 0u);
        table[high] = static_cast<uint16_t>(value);
    }
    return table;
}

// The least significant bit of a byte is shifted in first and so ends up highest.
constexpr std::array<uint8_t, 256> MakeMirrorTable()
{
    std::array<uint8_t, 256> table{};
    for (unsigned value = 0; value < 256; ++value) {
        unsigned mirrored = 0;
        for (unsigned bit = 0; bit < 8; ++bit)
            mirrored |= ((value >> bit) & 1u) << (7u - bit);
        table[value] = static_cast<uint8_t>(mirrored);
    }
    return table;
}

// The same for sixteen shifts, of which the second eight see what the first made.
constexpr std::array<uint16_t, 256> MakeDoubleShiftTable(const std::array<uint16_t, 256> &once)
{
    std::array<uint16_t, 256> table{};
    for (unsigned high = 0; high < 256; ++high) {
        const unsigned value = once[high];
        table[high] = static_cast<uint16_t>(((value << 8) & 0xFF00u) ^ once[value >> 8]);
    }
    return table;
}

constexpr std::array<uint16_t, 256> CRC_SHIFT = MakeShiftTable();
constexpr std::array<uint16_t, 256> CRC_SHIFT_TWICE = MakeDoubleShiftTable(CRC_SHIFT);
constexpr std::array<uint8_t, 256> MIRROR = MakeMirrorTable();

// For digits that chkHexArea has passed.
unsigned DigitValue(char digit)
{
    const unsigned code = static_cast<unsigned char>(digit);
    return code < 'A' ? code - '0' : code - 55u;
}

void PutHead(char start, int station, int command, uint32_t address, char **cursor)
{
    *(*cursor)++ = start;
    byteToHex(static_cast<uint8_t>((station & 15) << 4 | (command & 15)), cursor);
    addrToHex(address, cursor);
}

// The check value covers everything in front of it, the start character included.
void PutTail(char *cursor)
{
    const auto length = static_cast<uint16_t>(cursor - Mr166_abySnd);
    wordToHex(getCRC16(Mr166_abySnd, length), &cursor);
    *cursor++ = MR166_END;
    cbSnd = static_cast<uint16_t>(cursor - Mr166_abySnd);
}

} // namespace

uint16_t getCRC16(const void *bytes, uint16_t length)
{
    const uint8_t *next = static_cast<const uint8_t *>(bytes);
    const uint8_t *end = next + length;
    unsigned value = CRC_INITIAL;
    // Two bytes a round: their own bits have not reached the feedback by its end.
    for (; end - next >= 2; next += 2) {
        const unsigned data = static_cast<unsigned>(MIRROR[next[0]]) << 8 | MIRROR[next[1]];
        value = CRC_SHIFT_TWICE[value >> 8] ^ CRC_SHIFT[value & 0xFF] ^ data;
    }
    if (next != end)
        value = ((value << 8) & 0xFF00u) ^ MIRROR[*next] ^ CRC_SHIFT[value >> 8];
    return static_cast<uint16_t>(value);
}

void byteToHex(uint8_t value, char **cursor)
{
    *(*cursor)++ = DIGITS[value >> 4];
    *(*cursor)++ = DIGITS[value & 15];
}

void wordToHex(uint16_t value, char **cursor)
{
    byteToHex(static_cast<uint8_t>(value & 0xFF), cursor);
    byteToHex(static_cast<uint8_t>(value >> 8), cursor);
}

void addrToHex(uint32_t value, char **cursor)
{
    wordToHex(static_cast<uint16_t>(value & 0xFFFF), cursor);
    byteToHex(static_cast<uint8_t>((value >> 16) & 0xFF), cursor);
}

uint8_t hexToByte(const char *text)
{
    return static_cast<uint8_t>(DigitValue(text[0]) * 16u + DigitValue(text[1]));
}

uint16_t hexToWord(const char *text)
{
    return static_cast<uint16_t>(hexToByte(text + 2) * 256u + hexToByte(text));
}

int chkHexArea(size_t length, const char *text)
{
    for (size_t i = 0; i < length; ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (!isDigit && !(text[i] >= 'A' && text[i] <= 'F'))
            return 0;
    }
    return 1;
}

void makeSFrm(int station, int command, uint32_t address, uint16_t word)
{
    char *cursor = Mr166_abySnd;
    PutHead(MR166_START_SHORT, station, command, address, &cursor);
    wordToHex(word, &cursor);
    PutTail(cursor);
}

int makeLFrm(int station, int command, uint32_t address, unsigned count, const void *data)
{
    if (count < 1 || count > MR166_WRITE_MAX || data == nullptr)
        return 0;
    // A long frame has one length, whatever it carries: receivers count characters.
    uint8_t padded[MR166_WRITE_MAX];
    std::memset(padded, PADDING, sizeof padded);
    std::memcpy(padded, data, count);
    char *cursor = Mr166_abySnd;
    PutHead(MR166_START_LONG, station, command, address, &cursor);
    byteToHex(static_cast<uint8_t>(count), &cursor);
    for (const uint8_t value : padded)
        byteToHex(value, &cursor);
    PutTail(cursor);
    return 1;
}

int mr166CheckAnswer(const char *answer, size_t length, int station, int command)
{
    if (length < MR166_ANSWER_MIN_CHARS)
        return MR166_ERR_SHORT;
    if (answer[0] != MR166_START_ANSWER)
        return MR166_ERR_START;
    if (answer[length - 1] != MR166_END)
        return MR166_ERR_END;
    if (!chkHexArea(length - 2, answer + 1))
        return MR166_ERR_HEX;
    const auto checked = static_cast<uint16_t>(length - TAIL_CHARS);
    // The order of the checks is part of the protocol: which fault is reported when several are.
    if (getCRC16(answer, checked) != hexToWord(answer + checked))
        return MR166_ERR_CHECK;
    const int echoed = hexToByte(answer + 1);
    if (echoed >> 4 != station)
        return MR166_ERR_STATION;
    if ((echoed & 15) != command)
        return MR166_ERR_COMMAND;
    const int count = hexToByte(answer + ANSWER_COUNT);
    // Counts above 64 cannot be: targets put their error codes there.
    if (count >= MR166_TARGET_ERROR_MIN)
        return -count;
    return length == MR166_ANSWER_MIN_CHARS + 2u * static_cast<unsigned>(count) ? count
                                                                                : MR166_ERR_LENGTH;
}

int chkAnsFrm(int station, int command)
{
    const int count = mr166CheckAnswer(Mr166_abyRcv, cbRcv, station, command);
    for (int i = 0; i < count; ++i)
        Mr166_abyRcvData[i] = hexToByte(Mr166_abyRcv + ANSWER_DATA + 2 * i);
    return count;
}
