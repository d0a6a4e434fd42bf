// Frames of the mr166 protocol: upper-case hexadecimal text between a start and an end
// character with a check value. Owns the request and answer buffers; knows no port.
// Used by the link and by nobody else but tests and the trace.
#ifndef COMM_MR166_FRAME_H
#define COMM_MR166_FRAME_H

#include <cstddef>
#include <cstdint>

constexpr char MR166_START_SHORT = 0x02, MR166_START_LONG = 0x1A, MR166_START_ANSWER = 0x06;
constexpr char MR166_END = 0x03;
constexpr int MR166_CMD_READ = 0, MR166_CMD_WRITE = 8;
constexpr uint16_t MR166_SHORT_CHARS = 18, MR166_LONG_CHARS = 48;
constexpr uint16_t MR166_ANSWER_MIN_CHARS = 10; // an answer without data
constexpr uint16_t MR166_READ_MAX = 64;         // data bytes of one read
constexpr uint16_t MR166_WRITE_MAX = 16;        // data bytes of one write
constexpr size_t MR166_ANSWER_ROOM = 150;       // more characters are no answer

// Why an answer was refused. The target's own error codes are passed as -65 to -255.
enum {
    MR166_ERR_SHORT = -1,
    MR166_ERR_START = -2,
    MR166_ERR_END = -3,
    MR166_ERR_HEX = -4,
    MR166_ERR_CHECK = -5,
    MR166_ERR_STATION = -6,
    MR166_ERR_COMMAND = -7,
    MR166_ERR_LENGTH = -8,
    MR166_TARGET_ERROR_MIN = 65
};

extern char Mr166_abySnd[MR166_LONG_CHARS];      // request being built, start character first
extern uint16_t cbSnd;                           // its length
extern char Mr166_abyRcv[MR166_ANSWER_ROOM];     // answer as received, start character first
extern uint16_t cbRcv;                           // its length
extern uint8_t Mr166_abyRcvData[MR166_READ_MAX]; // data of the last valid answer

// The protocol's own check value; 0x0001 for no bytes.
uint16_t getCRC16(const void *bytes, uint16_t length);

// Write 2, 4 or 6 characters at the cursor and advance it; least significant byte first.
void byteToHex(uint8_t value, char **cursor);
void wordToHex(uint16_t value, char **cursor);
void addrToHex(uint32_t value, char **cursor);
// Decode 2 or 4 characters, which must have passed chkHexArea: nothing is checked here.
uint8_t hexToByte(const char *text);
uint16_t hexToWord(const char *text);
// 1 when all characters are 0-9 or A-F, else 0.
int chkHexArea(size_t length, const char *text);

// Build a request into the send buffer and set cbSnd. Only the low 4 bits of station and
// command and the low 24 of the address are sent.
void makeSFrm(int station, int command, uint32_t address, uint16_t word);
// 1; 0 when `count` is not 1 to 16 (nothing usable built).
int makeLFrm(int station, int command, uint32_t address, unsigned count, const void *data);

// Checks an answer of `length` characters against the request. Its count byte (0 to 64), or a
// negative code above. Codes -6, -7 and -65 on are those of answers that are sound.
int mr166CheckAnswer(const char *answer, size_t length, int station, int command);
// Checks the answer buffer against the request. Number of data bytes (0 to 64) left in
// Mr166_abyRcvData, or a negative code above.
int chkAnsFrm(int station, int command);

#endif
