// Messages as text: the listing's forms, and the single value that other views show, too.
// Everything is appended to a text of the caller's. Uses the table of record ids.
#ifndef LOGGER_DLLD_PRINT_H
#define LOGGER_DLLD_PRINT_H

#include <string>

#include "logger/dlld_message.h"
#include "logger/dlld_record.h"

// Date, time and type; nothing for a message too short to have a time.
void DLLD_FPrintMsgHdr(const DLLD_Msg &msg, std::string *out);
// The content by the message's type.
void DLLD_FPrintMsgCts(const DLLD_Msg &msg, std::string *out);
// The content as hexadecimal words, whatever the type.
void DLLD_FPrintMsgHexCts(const DLLD_Msg &msg, std::string *out);
// The content by its description, or in hexadecimal when there is none.
void DLLD_FPrintMsgRecCts(const DLLD_Msg &msg, std::string *out);
void DLLD_FPrintRecordCts(const DLLD_Record &record, const DLLD_Msg &msg, std::string *out);

// Where in a message's content the next field begins.
struct DLLD_Cursor {
    int32_t word = DLLD_HEAD_WORDS;
    bool isHighByte = false; // the low byte of that word is taken
};
// One field as "\n\tname = value"; filler only moves the cursor.
void DLLD_FPrintRecordItem(const DLLD_Field &field, const DLLD_Msg &msg, DLLD_Cursor *cursor,
                           std::string *out);
// The field's value with texts and unit, "???" when the message ends before it. The cursor
// is moved behind the field.
std::string DLLD_FormatItem(const DLLD_Field &field, const DLLD_Msg &msg, DLLD_Cursor *cursor);
// Words that no field of the record covers begin at the result.
int32_t DLLD_GetRestWord(const DLLD_Cursor &cursor);

std::string DLLD_GetText(const DLLD_Msg &msg); // of a text message

// A status stamp. What it lacks reads 0.
struct DLLD_Stamp {
    int32_t seconds = 0;
    uint32_t errors = 0;
    uint32_t internalErrors = 0;
    uint32_t warnings = 0;
    uint16_t state = 0;
};
bool DLLD_GetBStamp(const DLLD_Msg &msg, DLLD_Stamp *stamp); // false: too short for one
std::string DLLD_FormatState(uint16_t state);                // "0005h(ctl,run)"

// printf into a text; at most 255 characters a call.
void DLLD_Print(std::string *out, const char *format, ...) __attribute__((format(printf, 2, 3)));

#endif
