// HEX files into target memory, and the commands of the flash loader. Each of the latter
// borrows the port for its time, so that communication goes on as before.
#include <cstdio>

#include "comm/mr166_link.h"
#include "comm/sysaddr.h"
#include "console/commands/array_types.h"
#include "console/commands/commands.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "loader/borrow.h"
#include "loader/hex_stream.h"
#include "loader/l3_protocol.h"
#include "loader/program.h"
#include "platform/safe_file.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/tokens.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/main_window.h"

namespace {

// A progress box that the loader's files can drive.
struct Meter {
    std::string text;
    int dialog = 0;
    LDR_Progress progress;
};

bool StepMeter(void *context, uint32_t done, uint32_t total, const char *what)
{
    const Meter *meter = static_cast<const Meter *>(context);
    const int percent = total > 0 ? static_cast<int>(uint64_t{100} * done / total) : 0;
    // A step that says nothing of its own leaves the job's text standing.
    const std::string text = *what != '\0' ? what : meter->text;
    return UpdateProgressDialog(meter->dialog, percent, text) == 1;
}

void StartMeter(Meter *meter, const char *text)
{
    meter->text = text;
    meter->dialog = CreateProgressDialog("Vireo2", text);
    meter->progress.context = meter;
    meter->progress.step = StepMeter;
}

void StopMeter(const Meter &meter)
{
    DiscardProgressDialog(meter.dialog);
}

// Runs `work` with the port in the loader's hands.
template <typename Work> int WithPort(const char *label, Work work)
{
    LDR_Loan loan;
    const int opened = LDR_BorrowPort(ncom, bRate, &loan);
    if (opened < 0)
        return SCR_Fail(TXT_Format("%s: %s.", label, MrASC_ErrorText(opened).c_str()));
    const int result = work();
    // The port goes back whatever came of it; a failure of the work is the one to tell.
    const int returned = LDR_ReturnPort(loan);
    if (result >= 0 && returned < 0)
        return SCR_Fail(TXT_Format("%s: the link could not be opened again.", label));
    return result;
}

// A command that reports a code of its own in place of -1.
int FailAs(int result, const std::string &text)
{
    SCR_Fail(text);
    return result;
}

int SaveBytes(const char *path, const std::vector<uint8_t> &bytes)
{
    SafeFile safe;
    if (PLT_BeginSave(&safe, path, "wb") < 0)
        return -1;
    // What is missing shows as the stream's error when the file is closed.
    std::fwrite(bytes.data(), 1, bytes.size(), safe.file);
    return PLT_CommitSave(&safe);
}

bool HasHexSuffix(const std::string &path)
{
    const size_t dot = path.rfind('.');
    return dot != std::string::npos && TXT_IsSameWord(path.substr(dot), ".hex");
}

} // namespace

// Into memory over the ordinary link, line by line; the flash commands below need the loader.
int SCR_HexLoad(ScrPar *par)
{
    Meter meter;
    StartMeter(&meter, par[0].text);
    const int result = HEX_LoadByLines(par[0].text, STATION, meter.progress);
    StopMeter(meter);
    return result < 0 ? FailAs(result, "hexload: " + HEX_GetLoadCause() + ".") : result;
}

int SCR_L3Test(ScrPar *)
{
    return WithPort("l3test", [] {
        return LD167U_L3Test() == 0 ? 0
                                    : SCR_Fail("l3test: no loader: " + LD167U_GetFaultText() + ".");
    });
}

int SCR_L3Erase(ScrPar *)
{
    // The loader answers only when it is done, so that the text must stand on the screen before.
    CON_Print("Erasing Flash! This can take up to 15s, wait please ...");
    WIN_ShowMainView(ITEM_CONSOLE_VIEW);
    ProcessSystemEvents();
    return WithPort("l3erase", [] {
        const int result = LD167U_L3CmdEraseFlash();
        if (result == 0)
            return 0;
        return FailAs(result,
                      "l3erase: " + LD167U_GetFaultText() + ". The flash may be erased in part.");
    });
}

int SCR_L3Write(ScrPar *par)
{
    return WithPort("l3write", [par] {
        Meter meter;
        StartMeter(&meter, "Programming system flash!");
        const int result = LD167U_L3CmdWriteHexFile(par[0].text, meter.progress);
        StopMeter(meter);
        if (result < 0) {
            CON_Print(" Error, exit code: %d", result);
            return FailAs(result, "l3write: " + HEX_GetLoadCause() + ".");
        }
        CON_Print(" OK, programming done.");
        return result;
    });
}

int SCR_L3Verify(ScrPar *par)
{
    LDR_Job job;
    // Before the port is borrowed: a bad file must not interrupt the communication.
    if (LDR_Prepare(&job, par[0].text) < 0) {
        // The file keeps a bounded number of problems, and counts them all.
        const HEX_File &file = job.file;
        for (const HEX_Problem &problem : file.problems)
            CON_Print("%s", HEX_FormatProblem(problem).c_str());
        if (file.fatal + file.remarks > file.problems.size())
            CON_Print("... and %u more",
                      static_cast<unsigned>(file.fatal + file.remarks - file.problems.size()));
        return SCR_Fail("l3verify: " + LDR_GetResultText(job));
    }
    return WithPort("l3verify", [&job] {
        Meter meter;
        StartMeter(&meter, "Comparing");
        const int result = LDR_VerifyOnPort(&job, meter.progress);
        StopMeter(meter);
        if (result < 0)
            return FailAs(result, "l3verify: " + LDR_GetResultText(job));
        CON_Print(" OK, %u bytes are equal.", static_cast<unsigned>(job.file.data.size()));
        return result;
    });
}

int SCR_L3Read(ScrPar *par)
{
    // Below the limit the difference does not wrap.
    if (!ExecPar(par, 1) || par[1].value > ADDR_LIMIT - par[0].value)
        return SCR_Fail("l3read: invalid script parameters.");
    const char *path = par[2].text;
    return WithPort("l3read", [par, path] {
        Meter meter;
        StartMeter(&meter, "Reading");
        std::vector<uint8_t> bytes;
        const int result = LDR_ReadMemory(par[0].value, par[1].value, &bytes, meter.progress);
        StopMeter(meter);
        if (result == LDR_ERR_CANCELLED)
            return SCR_Fail("l3read: cancelled by the user.");
        // What had been read until then is not saved.
        if (result < 0)
            return SCR_Fail(TXT_Format("l3read: 0x%06X: %s.",
                                       par[0].value + static_cast<uint32_t>(bytes.size()),
                                       LD167U_GetFaultText().c_str()));
        // The name decides: HEX keeps the addresses, a binary file has none.
        const int saved = HasHexSuffix(path)
                              ? HEX_Save(path, par[0].value, bytes.data(), bytes.size())
                              : SaveBytes(path, bytes);
        return saved == 0 ? 0 : SCR_Fail(TXT_Format("l3read: Can't write file '%s'.", path));
    });
}
