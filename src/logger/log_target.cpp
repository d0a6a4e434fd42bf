// What a download needs of the program: the settings, pop-ups, and a box that shows how far it is.
#include "comm/sysaddr.h"
#include "logger/dlld.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/varnode.h"

namespace {

int progressDialog = 0; // 0 = none

// The box appears with the first step and goes with the last.
bool ShowProgress(uint32_t done, uint32_t total, const char *text)
{
    if (total == 0) {
        if (progressDialog > 0)
            DiscardProgressDialog(progressDialog);
        progressDialog = 0;
        return false;
    }
    if (progressDialog <= 0)
        progressDialog = CreateProgressDialog("Vireo2", text);
    // Without a box nobody can cancel: it is read to its end all the same.
    if (progressDialog <= 0)
        return false;
    const int percent = static_cast<int>(uint64_t(100) * done / total);
    // Also switching communication off and Ctrl-C end it.
    return UpdateProgressDialog(progressDialog, percent, text) == 1 || IsBreakWished();
}

} // namespace

void LOGV_UseTarget()
{
    DLLD_Host host;
    host.station = STATION;
    host.isWordAddressing = IsWordAddressing(Procesor) != 0;
    // The other processors keep no descriptions of their records.
    host.hasRecIds = Procesor == CPU_F283XX;
    host.showError = [](const char *title, const std::string &text) { MessagePopup(title, text); };
    host.showProgress = ShowProgress;
    DLLD_SetHost(host);
}

std::vector<std::string> LOGV_FindTargetLogs()
{
    // A log is known by its two members, whatever its type is called.
    std::vector<std::string> names;
    for (int i = 0; i < nNodes; i++) {
        const std::string name = aVarNode[i].name;
        if (GetSysAddrWk((name + ".dwLogAddr").c_str()) != ADDR_NONE &&
            GetSysAddrWk((name + ".nnLogWSize").c_str()) != ADDR_NONE)
            names.push_back(name);
    }
    return names;
}
