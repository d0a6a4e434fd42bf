// Descriptions of records: what the target says about the content of its own message types.
// Owns the table of record ids. Read from the target by dlld.h; asked by everything that
// prints a log. The syntax is in docs/manual/reference/formats.md.
#ifndef LOGGER_DLLD_RECORD_H
#define LOGGER_DLLD_RECORD_H

#include <cstdint>
#include <string>
#include <vector>

#include "logger/dlld_message.h"

constexpr int DLLD_RECIDS_MAX = 255;
constexpr int DLLD_DESCRIPTION_BYTES = 126; // of one entry's text on the target

enum DLLD_Form : uint8_t {
    DLLD_SIGNED,
    DLLD_UNSIGNED,
    DLLD_HEX, // decimal, and hexadecimal behind it
    DLLD_FLOAT,
    DLLD_BITS,
    DLLD_ENUM,
};

// A text of an enumeration (for the value `low`) or of a bit field (for the bit `low`, or
// for the number in the bits `low` to `high`).
struct DLLD_Choice {
    int64_t low = 0;
    int64_t high = 0;
    std::string text;
};

struct DLLD_Field {
    std::string name; // "" is filler, not shown
    std::string unit;
    DLLD_Form form = DLLD_UNSIGNED;
    bool isSigned = false;
    int bytes = 0;
    double scale = 1; // shown = stored * scale / divisor
    double divisor = 1;
    std::vector<DLLD_Choice> choices;
};

struct DLLD_Record {
    std::string name;
    std::vector<DLLD_Field> fields;
};

struct DLLD_RecId {
    int16_t id = 0;
    std::string text;    // as read, for showing
    bool isGood = false; // the text is a description
    int errorAt = 0;     // character, from 1, at which it stops being one
    DLLD_Record record;  // with the fields of the entries that continue this one
    bool isRest = false; // this entry continues an earlier one
};
extern std::vector<DLLD_RecId> DLLD_paRecId;
extern int32_t DLLD_nDimARecId;

// Characters of a text in target memory, up to its end: one a word, or two a word when the
// first word has a high byte. 0, or -1: the text does not end within the bytes.
int DLLD_ReduceStr(const uint8_t *bytes, size_t count, std::string *text);
// 0, or -1 with *errorAt: `text` is no description; the record is then as it was.
int DLLD_CreateRecordDescriptor(const std::string &text, DLLD_Record *record, int *errorAt);

void DLLD_ClearRecIds();
// Puts an entry into the table, which grows to hold it. 0, or -1: index out of range, or the
// text is no description (the entry is kept: its messages print as hexadecimal numbers).
int DLLD_SetRecId(int index, int16_t id, const std::string &text);
// The description of a message type, or null.
const DLLD_Record *DLLD_FindRecord(uint8_t type);

#endif
