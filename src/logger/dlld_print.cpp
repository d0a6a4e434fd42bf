// The listing's forms differ in what stands around a value; the value itself is made in one place,
// DLLD_FormatItem, for listing and window alike.
#include "logger/dlld_print.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr int32_t BSTAMP_WORDS_MIN = 11; // of a message
constexpr int32_t HEX_WORDS_A_LINE = 9;
// Words of a message, its head counted.
enum {
    BSTAMP_TIME_AT = 3,
    BSTAMP_ERR_AT = 5,
    BSTAMP_IERR_AT = 7,
    BSTAMP_WARN_AT = 9,
    BSTAMP_S_AT = 11
};

const char *const STATE_BITS[] = {"ctl", "rdy", "run", "err", "warn", "usr1", "usr2", "usr3"};
const char HEX_DIGITS[] = "0123456789ABCDEF";
const char MISSING[] = "???";

// The words from `first` on. By hand: most of a long listing is hexadecimal.
void AppendHexWords(const DLLD_Msg &msg, int32_t first, std::string *out)
{
    for (int32_t i = first; i < msg.length; i++) {
        if ((i - first) % HEX_WORDS_A_LINE == 0)
            out->append("\n    ");
        const uint16_t word = DLLD_GetWord(msg, i);
        const char text[] = {HEX_DIGITS[word >> 12], HEX_DIGITS[word >> 8 & 15],
                             HEX_DIGITS[word >> 4 & 15], HEX_DIGITS[word & 15], ' '};
        out->append(text, sizeof text);
    }
}

void PrintBStamp(const DLLD_Msg &msg, std::string *out)
{
    DLLD_Stamp stamp;
    if (!DLLD_GetBStamp(msg, &stamp))
        return;
    *out += "#BSTAMP\n    S=" + DLLD_FormatState(stamp.state);
    DLLD_Print(out, ", t=%lds,  Err=%08lXh,  IErr=%08lXh,  Warn=%08lXh",
               static_cast<long>(stamp.seconds), static_cast<unsigned long>(stamp.errors),
               static_cast<unsigned long>(stamp.internalErrors),
               static_cast<unsigned long>(stamp.warnings));
}

// The types that every target has; all others are records.
struct TypeRow {
    uint8_t type;
    void (*print)(const DLLD_Msg &msg, std::string *out);
};
const TypeRow TYPE_ROWS[] = {
    {DLLD_JUNK, [](const DLLD_Msg &, std::string *out) { *out += "JUNK"; }},
    {DLLD_TEXT,
     [](const DLLD_Msg &msg, std::string *out) { *out += "Text: '" + DLLD_GetText(msg) + "'"; }},
    {DLLD_BSTAMP, PrintBStamp}};

// The field's bits, low word first; false when the message ends before its end. Bytes share
// a word, low byte first; anything larger begins with a word of its own.
bool FetchBits(int bytes, const DLLD_Msg &msg, DLLD_Cursor *cursor, uint32_t *bits)
{
    if (bytes == 1) {
        const bool isThere = cursor->word < msg.length;
        *bits = DLLD_GetWord(msg, cursor->word) >> (cursor->isHighByte ? 8 : 0) & 0xFFu;
        cursor->word += cursor->isHighByte ? 1 : 0;
        cursor->isHighByte = !cursor->isHighByte;
        return isThere;
    }
    cursor->word = DLLD_GetRestWord(*cursor);
    cursor->isHighByte = false;
    *bits = bytes == 2 ? DLLD_GetWord(msg, cursor->word) : DLLD_GetDWord(msg, cursor->word);
    cursor->word += bytes / 2;
    return cursor->word <= msg.length;
}

// Names of the bits that are set, and numbers that stand in several bits.
void AppendBits(const DLLD_Field &field, uint32_t bits, std::string *out)
{
    for (const DLLD_Choice &choice : field.choices) {
        const auto width = static_cast<int>(choice.high - choice.low + 1);
        // Wider than the bits, so that a number of all 32 can be cut out of them.
        const uint32_t part =
            static_cast<uint32_t>((bits >> choice.low) & ((uint64_t(1) << width) - 1));
        if (width > 1)
            *out += " " + choice.text + "=" + std::to_string(part);
        else if (part != 0)
            *out += " " + choice.text;
    }
}

// The number as it is stored, scaled if the description says so, and what its choices say of it.
void AppendValue(const DLLD_Field &field, uint32_t bits, std::string *out)
{
    // Two's complement of as many bytes as the field has.
    const int64_t span = int64_t(1) << (8 * field.bytes);
    const bool isNegative = field.isSigned && bits >= static_cast<uint32_t>(span / 2);
    const int64_t number = isNegative ? bits - span : int64_t(bits);
    // Whole numbers stay whole: ten digits of a double would round a large one.
    const bool isScaled = field.scale != 1 || field.divisor != 1;
    if (field.form == DLLD_FLOAT) {
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        DLLD_Print(out, "%g", static_cast<double>(value) * field.scale / field.divisor);
    } else if (isScaled) {
        DLLD_Print(out, "%.10g", static_cast<double>(number) * field.scale / field.divisor);
    } else if (field.form == DLLD_SIGNED || field.form == DLLD_ENUM) {
        DLLD_Print(out, "%lld", static_cast<long long>(number));
    } else if (field.form == DLLD_UNSIGNED) {
        DLLD_Print(out, "%lu", static_cast<unsigned long>(bits));
    } else {
        DLLD_Print(out, "%lu(%lXh)", static_cast<unsigned long>(bits),
                   static_cast<unsigned long>(bits));
    }
    if (field.form == DLLD_BITS)
        AppendBits(field, bits, out);
    if (field.form != DLLD_ENUM)
        return;
    // A number without a name stands alone.
    for (const DLLD_Choice &choice : field.choices) {
        if (choice.low == number) {
            *out += " " + choice.text;
            return;
        }
    }
}

} // namespace

void DLLD_Print(std::string *out, const char *format, ...)
{
    char buffer[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    *out += buffer;
}

void DLLD_FPrintMsgHdr(const DLLD_Msg &msg, std::string *out)
{
    if (msg.length < DLLD_HEAD_WORDS)
        return;
    DateTime time;
    CvtAMCBIOS_time(DLLD_GetStamp(msg), &time);
    *out += '\n';
    DLLD_AppendTime(time, out);
    DLLD_Print(out, " MsgType=%02x ", DLLD_GetType(msg));
}

void DLLD_FPrintMsgCts(const DLLD_Msg &msg, std::string *out)
{
    if (msg.length < DLLD_HEAD_WORDS)
        return;
    for (const TypeRow &row : TYPE_ROWS) {
        if (row.type == DLLD_GetType(msg)) {
            row.print(msg, out);
            return;
        }
    }
    DLLD_FPrintMsgRecCts(msg, out);
}

void DLLD_FPrintMsgHexCts(const DLLD_Msg &msg, std::string *out)
{
    if (msg.length < DLLD_HEAD_WORDS)
        return;
    DLLD_Print(out, "MsgStart=%02x", DLLD_GetZ(msg));
    AppendHexWords(msg, DLLD_HEAD_WORDS, out);
}

void DLLD_FPrintMsgRecCts(const DLLD_Msg &msg, std::string *out)
{
    const DLLD_Record *record = DLLD_FindRecord(DLLD_GetType(msg));
    if (record != nullptr)
        DLLD_FPrintRecordCts(*record, msg, out);
    else
        DLLD_FPrintMsgHexCts(msg, out);
}

void DLLD_FPrintRecordCts(const DLLD_Record &record, const DLLD_Msg &msg, std::string *out)
{
    *out += record.name;
    DLLD_Cursor cursor;
    for (const DLLD_Field &field : record.fields)
        DLLD_FPrintRecordItem(field, msg, &cursor, out);
    // What the description does not know is not lost.
    AppendHexWords(msg, DLLD_GetRestWord(cursor), out);
}

void DLLD_FPrintRecordItem(const DLLD_Field &field, const DLLD_Msg &msg, DLLD_Cursor *cursor,
                           std::string *out)
{
    const std::string value = DLLD_FormatItem(field, msg, cursor);
    if (!field.name.empty())
        *out += "\n\t" + field.name + " = " + value;
}

std::string DLLD_FormatItem(const DLLD_Field &field, const DLLD_Msg &msg, DLLD_Cursor *cursor)
{
    uint32_t bits = 0;
    if (!FetchBits(field.bytes, msg, cursor, &bits))
        return MISSING;
    std::string text;
    AppendValue(field, bits, &text);
    if (!field.unit.empty())
        text += " " + field.unit;
    return text;
}

int32_t DLLD_GetRestWord(const DLLD_Cursor &cursor)
{
    return cursor.word + (cursor.isHighByte ? 1 : 0);
}

std::string DLLD_GetText(const DLLD_Msg &msg)
{
    std::string text;
    for (int32_t i = DLLD_HEAD_WORDS; i < msg.length; i++) {
        const uint16_t word = DLLD_GetWord(msg, i);
        // The low byte first; a text of odd length ends with half a word.
        for (const int part : {word & 0xFF, word >> 8})
            if (part != 0)
                text += static_cast<char>(part);
    }
    return text;
}

bool DLLD_GetBStamp(const DLLD_Msg &msg, DLLD_Stamp *stamp)
{
    // The state is the word behind these, and 0 where the message ends before it.
    if (msg.length < BSTAMP_WORDS_MIN)
        return false;
    stamp->seconds = static_cast<int32_t>(DLLD_GetDWord(msg, BSTAMP_TIME_AT));
    stamp->errors = DLLD_GetDWord(msg, BSTAMP_ERR_AT);
    stamp->internalErrors = DLLD_GetDWord(msg, BSTAMP_IERR_AT);
    stamp->warnings = DLLD_GetDWord(msg, BSTAMP_WARN_AT);
    stamp->state = DLLD_GetWord(msg, BSTAMP_S_AT);
    return true;
}

std::string DLLD_FormatState(uint16_t state)
{
    std::string text;
    DLLD_Print(&text, "%04Xh", state);
    // Only the low byte has names.
    if ((state & 0xFF) == 0)
        return text;
    char mark = '(';
    for (int bit = 0; bit < 8; bit++) {
        if ((state >> bit & 1) == 0)
            continue;
        text += mark;
        text += STATE_BITS[bit];
        mark = ',';
    }
    return text + ")";
}
