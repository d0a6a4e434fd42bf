// Arrays to the target: from files that `save` wrote (`load`) and from plain lists of
// numbers (`loadcsv`, `loadcsvn`). A file is read and converted whole before the first
// byte goes out: a bad line leaves the target as it was.
#include <cstring>
#include <vector>

#include "console/commands/array_types.h"
#include "console/commands/commands.h"
#include "console/commands/transfer.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "text/tokens.h"
#include "text/txfr.h"
#include "text/words.h"
#include "text/xscan.h"

namespace {

constexpr uint32_t WRITE_BLOCK_BYTES = 128; // what the meter counts as a block
constexpr int LINE_SIZE = 500;              // of a data line, end included
constexpr ptrdiff_t COUNT_DIGITS_MAX = 6;
constexpr size_t TYPE_NAME_SIZE = 3; // "u2" and the end

// --- the lines of a file ---------------------------------------------------------------------

struct DataFile {
    int handle = -1;
    int line = 0; // number of the line last read, or looked for at the end
    char text[LINE_SIZE] = "";
};

// A line too long to be a number reads as one that is none. False at the end of the file.
bool ReadLine(DataFile *file)
{
    file->line++;
    if (TXFR_RdLine(file->handle, file->text, LINE_SIZE) < 0)
        return false;
    if (TXFR_IsBrokenLine(file->handle) == 1) // its rest is read as a line of its own
        std::strcpy(file->text, "?");
    return true;
}

enum LineFault { LINE_GOOD, LINE_MISSING, LINE_NO_VALUE, LINE_OUT_OF_RANGE };

LineFault ReadValue(DataFile *file, const ArrayType &type, uint8_t *bytes)
{
    if (!ReadLine(file))
        return LINE_MISSING;
    switch (SCR_ParseElement(type, file->text, bytes)) {
    case ARRAY_OK:
        return LINE_GOOD;
    case ARRAY_NO_VALUE:
        return LINE_NO_VALUE;
    default:
        return LINE_OUT_OF_RANGE;
    }
}

LineFault ReadValues(DataFile *file, const ArrayType &type, uint32_t count,
                     std::vector<uint8_t> *bytes)
{
    bytes->resize(count * type.size);
    for (uint32_t i = 0; i < count; i++) {
        const LineFault fault = ReadValue(file, type, bytes->data() + i * type.size);
        if (fault != LINE_GOOD)
            return fault;
    }
    return LINE_GOOD;
}

int WriteValues(const char *label, uint32_t address, const std::vector<uint8_t> &bytes)
{
    const TransferPlan plan = {address, static_cast<uint32_t>(bytes.size()), WRITE_BLOCK_BYTES,
                               SCR_METER_ARRAY};
    const TransferReport report = SCR_WriteTransfer(plan, bytes.data());
    if (report.result == TRANSFER_DONE)
        return 0;
    // The array is partly new: the user must learn how far.
    const std::string written = SCR_WrittenText(report, plan.count, 1);
    if (report.result == TRANSFER_CANCELLED)
        return SCR_Fail(TXT_Format("%s: preruseno uzivatelem. %s.", label, written.c_str()));
    return SCR_Fail(TXT_Format("%s: chyba pri zapisu dat do systemu. %s. (%s)", label,
                               written.c_str(), report.cause.c_str()));
}

// --- load: the header ---------------------------------------------------------------------------

struct Header {
    uint32_t count = 0;
    const ArrayType *type = nullptr; // null: no type of ours
};

enum HeaderFault { HEADER_GOOD, HEADER_BAD, HEADER_TOO_MANY };

// A name, with the indexes that belong to it; the last "[n]" is the element count.
bool SkipPlace(const char **cursor)
{
    if (xscan("@^'/[.", cursor) < 0)
        return false;
    for (;;) {
        // Behind an index a further one or a member may follow: then it belongs to the name.
        const char *next = *cursor;
        if (xscan("/[@#0-9a-zA-Z./]", &next) < 0 || (*next != '[' && *next != '.'))
            return true;
        xscan("*^'/[.", &next);
        *cursor = next;
    }
}

HeaderFault ParseHeader(const char *line, Header *header)
{
    if (xscan("Ulozeni pole* /:* ?'", &line) < 0 || !SkipPlace(&line) || xscan("/[", &line) < 0)
        return HEADER_BAD;
    const char *digits = line;
    if (xscan("#1-9.*#0-9.", &line) < 0)
        return HEADER_BAD;
    if (line - digits > COUNT_DIGITS_MAX)
        return HEADER_TOO_MANY;
    TXT_ParseDecimal(&digits, &header->count);
    if (xscan("/]?'* /,* typ* /:* ", &line) < 0)
        return HEADER_BAD;
    char name[TYPE_NAME_SIZE] = "";
    char *out = name;
    if (xscanil("#uif.#124.", &line, &out) < 0 || xscan("/.* ?\r?\n#", &line) < 0)
        return HEADER_BAD;
    header->type = SCR_FindArrayType(name);
    return HEADER_GOOD;
}

// Reads the first line and compares it with what the command asks for.
int CheckHeader(DataFile *file, const char *fileName, const ArrayRequest &request)
{
    Header header;
    const HeaderFault fault = ReadLine(file) ? ParseHeader(file->text, &header) : HEADER_BAD;
    if (fault == HEADER_TOO_MANY)
        return SCR_Fail(TXT_Format("Load: Soubor '%s' deklaruje prilis mnoho prvku.", fileName));
    if (fault != HEADER_GOOD)
        return SCR_Fail(TXT_Format("Load: Soubor '%s' ma neplatnou hlavicku.", fileName));
    // More elements than asked for are fine: the first of them are taken.
    if (header.count < request.count)
        return SCR_Fail(TXT_Format("Load: Soubor '%s' deklaruje malo prvku.", fileName));
    if (header.type != request.type)
        return SCR_Fail("Load: typ ulozenych dat neodpovida parametrum prikazu.");
    return 0;
}

int LoadFile(DataFile *file, const char *fileName, const ArrayRequest &request)
{
    if (CheckHeader(file, fileName, request) < 0)
        return -1;
    CON_Print("Zapis do pole: %s\n", SCR_FormatPlace(request, "0x").c_str());
    std::vector<uint8_t> bytes;
    const LineFault fault = ReadValues(file, *request.type, request.count, &bytes);
    if (fault == LINE_MISSING)
        return SCR_Fail(
            TXT_Format("Load: Chyba pri cteni souboru '%s', (radek %d).", fileName, file->line));
    if (fault != LINE_GOOD)
        return SCR_Fail(
            TXT_Format("Load: chyba v souboru '%s', na radku %d.", fileName, file->line));
    return WriteValues("Load", request.address, bytes);
}

// --- lists of numbers ------------------------------------------------------------------------

int FailCsvRead(const char *label, const char *fileName, int line)
{
    return SCR_Fail(TXT_Format("%s: chyba pri cteni '%s' (radek %d).", label, fileName, line));
}

// Values from the file's present line on.
int LoadList(DataFile *file, const char *label, const char *fileName, const ArrayRequest &request,
             bool isWholeFile)
{
    std::vector<uint8_t> bytes;
    LineFault fault = ReadValues(file, *request.type, request.count, &bytes);
    // What a file holds beyond the array must be values, too; empty lines may end it.
    const bool isRestChecked = fault == LINE_GOOD && isWholeFile;
    while (isRestChecked && (fault == LINE_GOOD ||
                             (fault == LINE_NO_VALUE && *TXT_SkipBlanks(file->text) == '\0'))) {
        uint8_t unused[ELEMENT_BYTES_MAX];
        fault = ReadValue(file, *request.type, unused);
    }
    if (isRestChecked && fault == LINE_MISSING) // the end that was looked for
        fault = LINE_GOOD;
    if (fault == LINE_OUT_OF_RANGE)
        return SCR_Fail(
            TXT_Format("%s: chyba v souboru '%s', na radku %d.", label, fileName, file->line));
    if (fault != LINE_GOOD)
        return FailCsvRead(label, fileName, file->line);
    return WriteValues(label, request.address, bytes);
}

// The first line tells how many values follow.
int LoadCountedList(DataFile *file, const char *fileName, uint32_t minimum, ArrayRequest *request)
{
    const char *pattern = "* @#0-9.* #";
    const char *end = file->text;
    if (!ReadLine(file) || xscan(pattern, &end) < 0)
        return FailCsvRead("LoadCSVN", fileName, file->line);
    const char *digits = TXT_SkipBlanks(file->text);
    uint32_t count = 0;
    if (!TXT_ParseDecimal(&digits, &count) || count < minimum || count > request->count)
        return SCR_Fail(TXT_Format(
            "LoadCSVN: chybny pocet polozek specifikovany 1. radkem souboru '%s'.", fileName));
    request->count = count;
    return LoadList(file, "LoadCSVN", fileName, *request, false);
}

// What differs between the commands once the array is known and the file is open.
using LoadStep = int (*)(DataFile *file, const ScrPar *par, ArrayRequest *request);

int LoadArray(ScrPar *par, const char *command, int fileAt, LoadStep load)
{
    ArrayRequest request;
    if (SCR_ResolveArray(par, command, TXT_Format("%s:", command).c_str(), &request) < 0)
        return -1;
    DataFile file;
    file.handle = TXFR_Open(par[fileAt].text);
    if (file.handle < 0)
        return SCR_Fail(
            TXT_Format("%s: Nelze otevrit soubor %s pro cteni.", command, par[fileAt].text));
    const int result = load(&file, par, &request);
    TXFR_Close(file.handle);
    return result;
}

} // namespace

int SCR_Load(ScrPar *par)
{
    const LoadStep load = [](DataFile *file, const ScrPar *with, ArrayRequest *request) {
        return LoadFile(file, with[3].text, *request);
    };
    return LoadArray(par, "Load", 3, load);
}

int SCR_LoadCsv(ScrPar *par)
{
    const LoadStep load = [](DataFile *file, const ScrPar *with, ArrayRequest *request) {
        return LoadList(file, "LoadCSV", with[3].text, *request, true);
    };
    return LoadArray(par, "LoadCSV", 3, load);
}

int SCR_LoadCsvN(ScrPar *par)
{
    const LoadStep load = [](DataFile *file, const ScrPar *with, ArrayRequest *request) {
        return LoadCountedList(file, with[4].text, with[3].value, request);
    };
    return LoadArray(par, "LoadCSVN", 4, load);
}
