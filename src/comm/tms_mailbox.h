// The mailbox through which a C166 station reaches the TMS320 behind it: three 32-bit
// words in the station's memory (command and busy flag, TMS address, data). One 32-bit
// word a transfer; every TMS320 access of the program goes through here.
#ifndef COMM_TMS_MAILBOX_H
#define COMM_TMS_MAILBOX_H

#include <cstdint>
#include <string>

// Byte addresses in the station's memory.
constexpr uint32_t TMS_BOX_COMMAND = 0x3C000; // 1 read, 2 write; low byte 0 when done
constexpr uint32_t TMS_BOX_ADDRESS = 0x3C004;
constexpr uint32_t TMS_BOX_DATA = 0x3C008;

// How often the busy flag is asked for before the TMS320 counts as silent.
constexpr int TMS_POLLS_ITEM = 10;
constexpr int TMS_POLLS_MEMORY = 20;
constexpr int TMS_POLLS_WRITE = 20;

enum TMS_Result {
    TMS_OK = 0,
    TMS_ERR_SEND = -1,  // a word could not be put into the mailbox
    TMS_ERR_POLL = -2,  // the busy flag could not be read
    TMS_ERR_BUSY = -3,  // the TMS320 did not answer within the polls
    TMS_ERR_DATA = -4,  // the answer could not be fetched
    TMS_ERR_PROOF = -5, // all was answered, but not provably by this request's answers
};

// Reads the word at a TMS320 address, through the mailbox of `station` from the request to the
// answer. TMS_OK, or a TMS_ERR_ code.
int TMS_ReadWord(int station, uint32_t address, int maxPolls, uint32_t *value);

// Words one after the other, with one proof behind them: what is shown, saved or compared. All
// of it is read again while answers are repeated. *good (may be null): words that are proven
// when the result is a failure. TMS_OK, or the code of the word that failed, its cause in *cause.
int TMS_ReadWords(int station, uint32_t address, uint32_t count, int maxPolls, uint32_t *words,
                  uint32_t *good, std::string *cause);

// Writes one word. TMS_OK, TMS_ERR_SEND (*failedAt, which may be null: the
// mailbox address concerned), TMS_ERR_POLL or TMS_ERR_BUSY.
int TMS_WriteWord(int station, uint32_t address, uint32_t value, uint32_t *failedAt);

// The same, done for certain: when answers were repeated, reading back decides. TMS_ERR_PROOF as
// well.
int TMS_WriteProven(int station, uint32_t address, uint32_t value, uint32_t *failedAt);

// Why the last transfer failed, with the cause on the line where there is one; "" for TMS_OK.
std::string TMS_ErrorText(int result);
// The same with the line's cause as it was noted then.
std::string TMS_ErrorText(int result, const std::string &cause);

#endif
