// The window of one parameter. It follows the line that is selected in the table and goes with it.
#include "sets/editor.h"

#include "runtime/userint.h"
#include "sets/form.h"
#include "sets/value.h"
#include "sets/window_table.h"
#include "text/words.h"
#include "ui/resource.h"

namespace {

CFW_EditorHost host;
int shown = -1; // entry

// Texts come from the header and the files beside it.
void Show(int control, const std::string &text)
{
    SetCtrlVal(PANEL_CONFIG_EDIT, control, TXT_Visible(text));
}

// "2.5 1/s (250)": in the form's units, and as it is stored where that is another number.
std::string LongText(const PST_Form &form, uint32_t index, const PST_Held &held)
{
    if (!held.isThere)
        return "not known";
    const PST_Entry &entry = form.set.entries[index];
    const PST_Attributes &a = PST_AttributesOf(form.set, entry);
    std::string text = CFW_HeldText(form, index, held);
    if (!a.unit.empty())
        text += " " + a.unit;
    if (a.factor != 1 && entry.type != 0)
        text += " (" + PST_ValueText(entry, held.bytes) + ")";
    return text;
}

// Takes what stands in the field. False, and said, when it is no value.
bool AcceptTyped()
{
    std::string text;
    GetCtrlVal(PANEL_CONFIG_EDIT, CFGEDIT_NEW, &text);
    const std::string why = PST_EditForm(host.form, static_cast<uint32_t>(shown), text);
    Show(CFGEDIT_HINT, why);
    // The table shows it, too: both are views of the same form.
    if (why.empty())
        host.refresh();
    return why.empty();
}

} // namespace

void CFW_OpenEditor(const CFW_EditorHost &newHost, int entry)
{
    if (entry < 0)
        return;
    host = newHost;
    shown = entry;
    Show(CFGEDIT_HINT, "");
    DisplayPanel(PANEL_CONFIG_EDIT);
    SetActivePanel(PANEL_CONFIG_EDIT);
    CFW_RefreshEditor();
    SetActiveCtrl(PANEL_CONFIG_EDIT, CFGEDIT_NEW);
}

void CFW_RefreshEditor()
{
    int isVisible = 0, line = -1;
    GetPanelAttribute(PANEL_CONFIG_EDIT, ATTR_VISIBLE, &isVisible);
    if (isVisible == 0 || host.form == nullptr)
        return;
    const PST_Form &form = *host.form;
    GetCtrlIndex(PANEL_CONFIG, CONFIG_LIST, &line);
    // On a heading it stays with the parameter before.
    if (CFW_GetEntry(line) >= 0)
        shown = CFW_GetEntry(line);
    // The form may have been made anew with fewer entries, or closed.
    if (!form.isOpen || shown < 0 || static_cast<size_t>(shown) >= form.set.entries.size()) {
        HidePanel(PANEL_CONFIG_EDIT);
        shown = -1;
        return;
    }
    const auto index = static_cast<uint32_t>(shown);
    const PST_Entry &entry = form.set.entries[index];
    const PST_Attributes &a = PST_AttributesOf(form.set, entry);
    Show(CFGEDIT_NAME, entry.name);
    Show(CFGEDIT_TEXT, a.text);
    Show(CFGEDIT_TYPE,
         std::string(PST_TypeName(entry.type)) + (a.isReadOnly  ? ", read-only"
                                                  : a.needsStop ? ", only while the machine stands"
                                                                : ""));
    Show(CFGEDIT_LIMITS, CFW_LimitsText(a) + (a.unit.empty() ? "" : " " + a.unit));
    Show(CFGEDIT_DEFAULT, CFW_DefaultText(a));
    Show(CFGEDIT_DEVICE, LongText(form, index, form.device[index]));
    Show(CFGEDIT_FILE, LongText(form, index, form.file[index]));
    SetCtrlVal(PANEL_CONFIG_EDIT, CFGEDIT_NEW,
               CFW_HeldText(form, index, PST_FormValue(form, index)));
    // A read-only value can be looked at and copied.
    SetCtrlAttribute(PANEL_CONFIG_EDIT, CFGEDIT_NEW, ATTR_CTRL_MODE, a.isReadOnly ? 0 : 1);
    SetCtrlAttribute(PANEL_CONFIG_EDIT, CFGEDIT_FROM_DEFAULT, ATTR_DIMMED,
                     a.hasDefault && !a.isReadOnly ? 0 : 1);
    SetCtrlAttribute(PANEL_CONFIG_EDIT, CFGEDIT_FROM_FILE, ATTR_DIMMED,
                     form.file[index].isThere && !a.isReadOnly ? 0 : 1);
    for (const int control : {CFGEDIT_TAKE, CFGEDIT_WRITE})
        SetCtrlAttribute(PANEL_CONFIG_EDIT, control, ATTR_DIMMED, a.isReadOnly ? 1 : 0);
}

int CFW_EditorNewCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT && shown >= 0)
        AcceptTyped();
    return 0;
}

int CFW_EditorButtonCB(int panel, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    if (control == CFGEDIT_CLOSE) {
        HidePanel(panel);
        return 0;
    }
    if (shown < 0 || host.form == nullptr || !host.form->isOpen)
        return 0;
    PST_Form &form = *host.form;
    const auto index = static_cast<uint32_t>(shown);
    if (control == CFGEDIT_TAKE) {
        AcceptTyped();
    } else if (control == CFGEDIT_WRITE) {
        // What stands in the field is what is written, also without Enter behind it.
        if (AcceptTyped())
            host.write(index);
    } else {
        if (control == CFGEDIT_FROM_DEFAULT)
            Show(CFGEDIT_HINT, PST_EditDefault(&form, index));
        else
            form.edited[index] = form.file[index];
        host.refresh();
    }
    return 0;
}
