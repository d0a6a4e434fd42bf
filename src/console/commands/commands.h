// The functions behind the command table. Each takes its row's parameters and answers
// 0, or -1 with its reason in szScrFnErrMsg.
#ifndef CONSOLE_COMMANDS_COMMANDS_H
#define CONSOLE_COMMANDS_COMMANDS_H

#include "text/script_param.h"

// Single values.
int SCR_Write(ScrPar *par);
int SCR_WriteNA(ScrPar *par);
int SCR_Set(ScrPar *par); // the whole line
// Arrays as text.
int SCR_Save(ScrPar *par);
int SCR_Load(ScrPar *par);
int SCR_LoadCsv(ScrPar *par);
int SCR_LoadCsvN(ScrPar *par);
int SCR_Dump(ScrPar *par);
// Memory as bytes.
int SCR_BinSave(ScrPar *par);
int SCR_XSave(ScrPar *par);
int SCR_BinLoad(ScrPar *par);
// The target's code, and the names of its addresses.
int SCR_Dis(ScrPar *par);
int SCR_Addr2Name(ScrPar *par);
int SCR_Term166(ScrPar *par);
// The data logger.
int ScrFnGetLog(ScrPar *par);
int ScrFnSaveLog(ScrPar *par);
int SCR_DlldTst(ScrPar *par);
// HEX files and the flash loader.
int SCR_HexLoad(ScrPar *par);
int SCR_L3Test(ScrPar *par);
int SCR_L3Erase(ScrPar *par);
int SCR_L3Write(ScrPar *par);
int SCR_L3Verify(ScrPar *par);
int SCR_L3Read(ScrPar *par);
// Variable sets.
int SCR_Upload(ScrPar *par);
int SCR_Download(ScrPar *par);
int SCR_Ldx2Vldx(ScrPar *par);
int SCR_LdCmpLdx(ScrPar *par);
int SCR_MkCmpVldx(ScrPar *par);
// Registers of any Modbus slave; the parameter is the whole line.
int SCR_MbRead(ScrPar *par);
int SCR_MbWrite(ScrPar *par);
// Settings and the monitor itself.
int SCR_Help(ScrPar *par);
int SCR_Station(ScrPar *par);
int SCR_Procesor(ScrPar *par);
int SCR_ListVars(ScrPar *par);
int SCR_TypeMap(ScrPar *par); // the whole line
int SCR_Language(ScrPar *par);
int SCR_Exit(ScrPar *par);
int SCR_ComPar(ScrPar *par);
int SCR_Msg(ScrPar *par);
int SCR_Qst(ScrPar *par);

#endif
