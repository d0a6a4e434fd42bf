// The messages of a log buffer: where they begin and end, their time stamps, and the zero
// words that the target has replaced. Works on a log in memory; owns nothing.
//
// A log is a header of 8 words and then messages, parted by zero words. A message is its
// type and replacement value, a time stamp of two words, and its content.
#ifndef LOGGER_DLLD_MESSAGE_H
#define LOGGER_DLLD_MESSAGE_H

#include <cstdint>
#include <string>
#include <vector>

#include "calendar/datetime.h"

constexpr int32_t DLLD_HEADER_WORDS = 8;
constexpr int32_t DLLD_WORDS_MAX = 524288; // of a whole log
constexpr int32_t DLLD_HEAD_WORDS = 3;     // of a message: type and stamp

enum DLLD_Type : uint8_t { DLLD_JUNK = 0x01, DLLD_TEXT = 0x02, DLLD_BSTAMP = 0x10 };

typedef std::vector<uint16_t> DLLD_Log; // the whole buffer, its header included

// The first index from `index` on with a word that is not zero, or -1; also for a bad size
// or index.
int32_t DLLD_MsgStartNdx(const uint16_t *buffer, int32_t words, int32_t index);
// Words from `start` on that are not zero; 0 for bad arguments.
int32_t DLLD_MsgWLen(const uint16_t *buffer, int32_t words, int32_t start);

// A content word as it was before the target replaced zeros by `z`.
uint16_t DLLD_GetZR_W(uint16_t word, uint8_t z);
uint32_t DLLD_GetZR_DW(uint16_t high, uint16_t low, uint8_t z);

// A packed time: year since 2000 in the high byte, two-second units of a year of months of
// 31 days below. Always 1. Nothing is checked: what lies beyond December gives month 13.
int CvtAMCBIOS_time(uint32_t stamp, DateTime *dateTime);
// The way back; odd seconds become even. 0 for a year outside 2000 to 2255.
uint32_t DLLD_MakeStamp(const DateTime &dateTime);
// "2015-03-01 10:20:30", also of a month 13.
void DLLD_AppendTime(const DateTime &dateTime, std::string *text);

// One message inside a log.
struct DLLD_Msg {
    const uint16_t *words = nullptr;
    int32_t length = 0; // 1 or more
};
uint8_t DLLD_GetType(const DLLD_Msg &msg);
uint8_t DLLD_GetZ(const DLLD_Msg &msg);
uint32_t DLLD_GetStamp(const DLLD_Msg &msg); // 0 for a message too short to have one
// Word `index` of the message, of its content with the zeros back. Behind the message's end
// stands the zero that ends it.
uint16_t DLLD_GetWord(const DLLD_Msg &msg, int32_t index);
uint32_t DLLD_GetDWord(const DLLD_Msg &msg, int32_t index); // low word first
// The message at or behind *index, which is moved behind it. False at the end of the log.
bool DLLD_NextMsg(const DLLD_Log &log, int32_t *index, DLLD_Msg *msg);

#endif
