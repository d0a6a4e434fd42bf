// The commands of console and scripts. To add a command is to add a row; a row without
// a function answers that this version cannot do it.
#include "console/commands/commands.h"
#include "console/script/script_command.h"

namespace {

constexpr uint32_t BYTE = PAR_BYTE | PAR_UNSIGNED;  // 0 to 0xFF
constexpr uint32_t COUNT = PAR_WORD | PAR_UNSIGNED; // 0 to 0xFFFF
constexpr uint32_t LENGTH = PAR_LONG | PAR_UNSIGNED;
constexpr uint32_t INT16 = PAR_WORD | PAR_SIGNED;
constexpr uint32_t PLACE = PAR_ADDRESS | PAR_NAME | PAR_LONG; // a name or an address
constexpr uint32_t TYPE = PAR_TYPE | PAR_NAME;
constexpr uint32_t PATH = PAR_RAW;
constexpr uint32_t TEXT = PAR_TEXT;

} // namespace

constexpr ScrRow SCR_aTable[] = {
    // These need the link.
    {SCR_Write, "write", {BYTE, PAR_LONG, PLACE}}, // size, value, where
    {SCR_WriteNA, "writeNA", {BYTE, PAR_LONG, PLACE}},
    {SCR_Save, "save", {PLACE, TYPE, COUNT, PATH}},
    {SCR_Load, "load", {PLACE, TYPE, COUNT, PATH}},
    {SCR_LoadCsv, "loadcsv", {PLACE, TYPE, COUNT, PATH}},
    {SCR_LoadCsvN, "loadcsvn", {PLACE, TYPE, COUNT, COUNT, PATH}}, // count, minimum
    {ScrFnSaveLog, "savelog", {PLACE, PATH}},
    {SCR_Dump, "dump", {PLACE, TYPE, COUNT}},
    {SCR_BinSave, "binsave", {PLACE, LENGTH, PATH}},
    {SCR_XSave, "xsave", {PLACE, LENGTH, PATH}},
    {SCR_BinLoad, "binload", {PLACE, LENGTH, PATH}},
    {SCR_Dis, "dis", {PLACE, BYTE}}, // address, instructions
    {SCR_Upload, "upload", {PATH, PATH}},
    {SCR_Download, "download", {PATH, PATH, BYTE}},
    {SCR_HexLoad, "hexload", {PATH}},
    {SCR_L3Test, "l3test", {}},
    {SCR_L3Erase, "l3erase", {}},
    {SCR_L3Write, "l3write", {PATH}},
    {SCR_L3Verify, "l3verify", {PATH}},
    {SCR_L3Read, "l3read", {PLACE, LENGTH, PATH}},
    {ScrFnGetLog, "getlog", {TEXT, PATH}},
    {SCR_DlldTst, "dlldtst", {INT16}},
    {SCR_MbRead, "mbread", {PAR_EXTERN}},   // [slave:]function, start, quantity
    {SCR_MbWrite, "mbwrite", {PAR_EXTERN}}, // [slave:]start, values
    {SCR_Set, "set", {PAR_EXTERN}},         // [(type)] [station:]name [= value]
    // These do not, from the help on.
    {SCR_Help, "h", {}},
    {SCR_Help, "help", {}},
    {SCR_Term166, "term166", {PAR_EXTERN}}, // [text]
    {SCR_Station, "station", {BYTE}},
    {SCR_Procesor, "procesor", {COUNT}},
    {SCR_ListVars, "listvars", {TEXT}},
    {SCR_TypeMap, "tm", {PAR_EXTERN}}, // [file]
    {SCR_Addr2Name, "addr2name", {PLACE}},
    {SCR_Ldx2Vldx, "ldx2vldx", {PATH, PATH, PATH}},
    {SCR_LdCmpLdx, "ldcmpldx", {PATH}},
    {SCR_MkCmpVldx, "mkcmpvldx", {PATH, PATH}},
    {SCR_Language, "language", {TEXT}},
    {SCR_Exit, "exit", {}},
    {SCR_ComPar, "compar", {BYTE, COUNT}}, // port, baud rate
    {SCR_Msg, "msg", {TEXT}},
    {SCR_Qst, "qst", {TEXT, TEXT, TEXT}}, // question, second button, label
};

namespace {

constexpr int CountTargetRows()
{
    int rows = 0;
    while (SCR_aTable[rows].run != SCR_Help)
        ++rows;
    return rows;
}

} // namespace

const int SCR_cnTarget = CountTargetRows();
const int SCR_cnTable = sizeof SCR_aTable / sizeof SCR_aTable[0];
