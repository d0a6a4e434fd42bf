// Arrays from the target: to a text file (`save`) and to the console (`dump`).
#include "console/commands/array_types.h"
#include "console/commands/commands.h"
#include "console/commands/transfer.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "platform/safe_file.h"
#include "text/words.h"

namespace {

constexpr uint32_t SAVE_BLOCK_BYTES = 64;
constexpr uint32_t ROW_BYTES = 8; // of integers on a row of a dump
constexpr uint32_t ROW_FLOATS = 4;

int FailTransfer(const TransferReport &report, const char *label)
{
    if (report.result == TRANSFER_CANCELLED)
        return SCR_Fail(TXT_Format("%s: preruseno uzivatelem.", label));
    // `dump` says "Save", too: procedures look for this one text.
    return SCR_Fail("Save: chyba v komunikaci (" + report.cause + ")");
}

// "  -1 ffh": the hexadecimal form has the digits of the type, not those of the sign extension.
std::string FormatForDump(const ArrayType &type, const uint8_t *bytes)
{
    if (type.isFloat) {
        std::string text = SCR_FormatElement(type, bytes);
        text.pop_back(); // its line feed
        return TXT_Format("%*s", type.dumpWidth, text.c_str());
    }
    const uint32_t bits = SCR_GetElement(type, bytes);
    const int digits = static_cast<int>(2 * type.size);
    const uint32_t shown = bits & (UINT32_MAX >> (32 - 8 * type.size));
    return type.isSigned
               ? TXT_Format("%*d %0*xh", type.dumpWidth, static_cast<int32_t>(bits), digits, shown)
               : TXT_Format("%*u %0*xh", type.dumpWidth, bits, digits, shown);
}

} // namespace

int SCR_Save(ScrPar *par)
{
    ArrayRequest request;
    if (SCR_ResolveArray(par, "Save", "Save.", &request) < 0)
        return -1;
    SafeFile file;
    if (PLT_BeginSave(&file, par[3].text, "wb") < 0)
        return SCR_Fail(TXT_Format("Save: Nelze otevrit soubor %s pro zapis.", par[3].text));
    PLT_SaveText(file.file,
                 TXT_Format("Ulozeni pole: %s, typ: %s.\n", SCR_FormatPlace(request, "").c_str(),
                            request.type->upperName));
    // The bytes are counted in 16 bits: an array of 64 KiB and more wraps.
    const ArrayType &type = *request.type;
    const auto byteCount = static_cast<uint16_t>(request.count * type.size);
    const TransferPlan plan = {request.address, byteCount, SAVE_BLOCK_BYTES, SCR_METER_ARRAY};
    const TransferReport report =
        SCR_ReadTransfer(plan, [&](uint32_t, const uint8_t *bytes, uint32_t count) {
            for (uint32_t i = 0; i + type.size <= count; i += type.size)
                PLT_SaveText(file.file, SCR_FormatElement(type, bytes + i));
            return true;
        });
    if (report.result != TRANSFER_DONE) {
        PLT_CancelSave(&file);
        return FailTransfer(report, "Save");
    }
    if (PLT_CommitSave(&file) < 0)
        return SCR_Fail(TXT_Format("Save: chyba pri zapisu do souboru %s.", par[3].text));
    return 0;
}

int SCR_Dump(ScrPar *par)
{
    ArrayRequest request;
    if (SCR_ResolveArray(par, "Dump", "Dump.", &request) < 0)
        return -1;
    CON_Print("Pole: %s, typ: %s.", SCR_FormatPlace(request, "").c_str(), request.type->upperName);
    const ArrayType &type = *request.type;
    const uint32_t perRow = type.isFloat ? ROW_FLOATS : ROW_BYTES / type.size;
    const TransferPlan plan = {request.address, request.count * type.size, SAVE_BLOCK_BYTES,
                               SCR_METER_ARRAY};
    uint32_t index = 0;
    std::string row;
    const auto addElements = [&](uint32_t address, const uint8_t *bytes, uint32_t count) {
        for (uint32_t i = 0; i + type.size <= count; i += type.size) {
            if (index % perRow == 0)
                row = TXT_Format("%06x[%4u]", address + i, index);
            row += "  " + FormatForDump(type, bytes + i);
            if (++index % perRow == 0) {
                PrintMonStr(row);
                row.clear();
            }
        }
        return true;
    };
    const TransferReport report = SCR_ReadTransfer(plan, addElements);
    if (!row.empty()) // the last row; after a failure what stands in front of it
        PrintMonStr(row);
    return report.result == TRANSFER_DONE ? 0 : FailTransfer(report, "Dump");
}
