// Any file as a debug file: what is saved loads as the same list, whatever was done to it.
// The first bytes say which items are moved and removed.
#include "runtime/headless/headless.h"
#include "scratch_folder.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/list/edit.h"
#include "watch/list/list_file.h"
#include "watch/list/list_layout.h"
#include "watch/list/litem.h"

namespace {

constexpr size_t EDITS = 4;

std::string ListText()
{
    std::string text;
    for (int i = 0; i < nLItems; ++i)
        text += LIT_FileLine(aLItems[i]) + "\n";
    return text;
}

void Edit(unsigned code)
{
    if (nLItems == 0)
        return;
    const int from = static_cast<int>(code >> 4) % nLItems;
    if (code % 2 == 0)
        EDT_Move(from, static_cast<int>(code >> 1 & 7) % nLItems);
    else if (code % 8 == 1)
        EDT_Remove(from);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    static const bool isReady = HL_LoadAllPanels() == 0;
    mainPanel = PANEL_MAIN;
    FUZ_Check(isReady);
    if (size < EDITS)
        return 0;
    const std::string content(reinterpret_cast<const char *>(data) + EDITS, size - EDITS);
    const std::string path = FUZ_Folder() + "/list.dbg";
    FUZ_WriteFile("list.dbg", content);
    FUZ_Check(dat2litems(path.c_str()) == 0 && nLItems >= 0 && nLItems <= LITEMS_MAX);
    for (size_t i = 0; i < EDITS; ++i)
        Edit(data[i]);
    const std::string list = ListText(), saved = LIT_ComposeFile(LIT_FileLine);
    const bool isExact = nLItems <= LITEMS_MAX - static_cast<int>(EDITS);
    FUZ_WriteFile("list.dbg", saved);
    FUZ_Check(dat2litems(path.c_str()) == 0);
    FUZ_Check(!isExact || ListText() == list);
    FUZ_Check(!isExact || LIT_ComposeFile(LIT_FileLine) == saved);
    return 0;
}
