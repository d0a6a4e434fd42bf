// Arrays from the target: to a text file (`save`) and to the console (`dump`).
#include "console/commands/array_types.h"
#include "console/commands/commands.h"
#include "console/commands/transfer.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "platform/safe_file.h"

namespace {

constexpr uint32_t SAVE_BLOCK_BYTES = 64;
constexpr uint32_t ROW_BYTES = 8; // of integers on a row of a dump
constexpr uint32_t ROW_FLOATS = 4;

int FailTransfer(const TransferReport &report, const char *label)
{
    if (report.result == TRANSFER_CANCELLED)
        return SCR_Fail(CON_Format("%s: preruseno uzivatelem.", label));
    // `dump` says "Save", too: procedures look for this one text.
    return SCR_Fail("Save: chyba v komunikaci (" + report.cause + ")");
}

// --- save -----------------------------------------------------------------------------------

TransferReport SaveElements(const ArrayRequest &request, std::FILE *file)
{
    const ArrayType &type = *request.type;
    // Counted in 16 bits: an array of 64 KiB and more wraps.
    const auto bytes = static_cast<uint16_t>(request.count * type.size);
    const TransferPlan plan = {request.address, bytes, SAVE_BLOCK_BYTES, TRF_METER_ARRAY};
    return TRF_Read(plan, [&](uint32_t, const uint8_t *block, uint32_t count) {
        for (uint32_t i = 0; i + type.size <= count; i += type.size)
            SAF_PutText(file, ARR_FormatElement(type, block + i));
        return true;
    });
}

// --- dump -----------------------------------------------------------------------------------

struct DumpFormat {
    const char *typeName;
    uint32_t perRow;
    std::string (*format)(uint32_t bits, const uint8_t *bytes);
};

std::string FormatI1(uint32_t bits, const uint8_t *)
{
    return CON_Format("%4d %02xh", static_cast<int32_t>(bits), bits & 0xFF);
}

std::string FormatU1(uint32_t bits, const uint8_t *)
{
    return CON_Format("%3u %02xh", bits, bits);
}

std::string FormatI2(uint32_t bits, const uint8_t *)
{
    return CON_Format("%7d %04xh", static_cast<int32_t>(bits), bits & 0xFFFF);
}

std::string FormatU2(uint32_t bits, const uint8_t *)
{
    return CON_Format("%6u %04xh", bits, bits);
}

std::string FormatI4(uint32_t bits, const uint8_t *)
{
    return CON_Format("%14d %08xh", static_cast<int32_t>(bits), bits);
}

std::string FormatU4(uint32_t bits, const uint8_t *)
{
    return CON_Format("%12u %08xh", bits, bits);
}

std::string FormatF4(uint32_t, const uint8_t *bytes)
{
    std::string text = ARR_FormatElement(*ARR_FindType("f4"), bytes);
    text.pop_back(); // its line feed
    return CON_Format("%12s", text.c_str());
}

// In the order of ARR_aTypes.
const DumpFormat DUMP_FORMATS[ARRAY_TYPES] = {
    {"i1", ROW_BYTES, FormatI1}, {"i2", ROW_BYTES / 2, FormatI2}, {"i4", ROW_BYTES / 4, FormatI4},
    {"u1", ROW_BYTES, FormatU1}, {"u2", ROW_BYTES / 2, FormatU2}, {"u4", ROW_BYTES / 4, FormatU4},
    {"f4", ROW_FLOATS, FormatF4}};

struct DumpState {
    uint32_t index = 0;
    std::string row;
};

void AddToRow(const ArrayType &type, uint32_t address, const uint8_t *bytes, DumpState *state)
{
    const DumpFormat &format = DUMP_FORMATS[&type - ARR_aTypes];
    if (state->index % format.perRow == 0)
        state->row = CON_Format("%06x[%4u]", address, state->index);
    state->row += "  " + format.format(ARR_GetElement(type, bytes), bytes);
    state->index++;
    if (state->index % format.perRow == 0) {
        PrintMonStr(state->row);
        state->row.clear();
    }
}

TransferReport DumpElements(const ArrayRequest &request, DumpState *state)
{
    const ArrayType &type = *request.type;
    const TransferPlan plan = {request.address, request.count * type.size, SAVE_BLOCK_BYTES,
                               TRF_METER_ARRAY};
    return TRF_Read(plan, [&](uint32_t address, const uint8_t *bytes, uint32_t count) {
        for (uint32_t i = 0; i + type.size <= count; i += type.size)
            AddToRow(type, address + i, bytes + i, state);
        return true;
    });
}

} // namespace

int SCR_Save(ScrPar *par)
{
    ArrayRequest request;
    if (ARR_Resolve(par, "Save", "Save.", &request) < 0)
        return -1;
    SafeFile file;
    if (SAF_Open(&file, par[3].text, "wb") < 0)
        return SCR_Fail(CON_Format("Save: Nelze otevrit soubor %s pro zapis.", par[3].text));
    SAF_PutText(file.file,
                CON_Format("Ulozeni pole: %s, typ: %s.\n", ARR_FormatPlace(request, "").c_str(),
                           request.type->upperName));
    const TransferReport report = SaveElements(request, file.file);
    if (report.result != TRANSFER_DONE) {
        SAF_Cancel(&file);
        return FailTransfer(report, "Save");
    }
    if (SAF_Commit(&file) < 0)
        return SCR_Fail(CON_Format("Save: chyba pri zapisu do souboru %s.", par[3].text));
    return 0;
}

int SCR_Dump(ScrPar *par)
{
    ArrayRequest request;
    if (ARR_Resolve(par, "Dump", "Dump.", &request) < 0)
        return -1;
    CON_Print("Pole: %s, typ: %s.", ARR_FormatPlace(request, "").c_str(), request.type->upperName);
    DumpState state;
    const TransferReport report = DumpElements(request, &state);
    if (!state.row.empty())
        PrintMonStr(state.row);
    return report.result == TRANSFER_DONE ? 0 : FailTransfer(report, "Dump");
}
