// A set as a form, without its window: for each value what the user has typed, what the
// target holds and what a file holds. The window shows it; tests look at it directly.
#ifndef SETS_FORM_H
#define SETS_FORM_H

#include "sets/data.h"
#include "sets/device.h"
#include "sets/restore.h"
#include "sets/set.h"

#include <string>
#include <vector>

struct PST_Form {
    PST_Set set;
    bool isOpen = false;
    PST_Image device; // by place, as last read
    PST_Image file;   // by entry
    PST_Image edited; // by entry; what is there is to be written
    std::string filePath;
};

// Reads the header. 0, or -1 with the reasons: the form is then as it was.
int PST_OpenForm(const std::string &header, PST_Form *form, PST_Problems *problems);
// The same header once more, after map or type map have changed. What was typed is kept for
// the names that are still there; what the target held must be read again.
int PST_ReopenForm(PST_Form *form, PST_Problems *problems);

// What the user has typed, else what the target holds.
const PST_Held &PST_FormValue(const PST_Form &form, uint32_t entry);
// Typed, and not what the target is known to hold.
bool PST_IsChanged(const PST_Form &form, uint32_t entry);
// Whether the file has another value than the target, both being known.
bool PST_IsOther(const PST_Form &form, uint32_t entry);

// A text in the units of the form becomes the entry's value; "" takes it back. "" or why not.
std::string PST_EditForm(PST_Form *form, uint32_t entry, const std::string &text);
// The entry's default. "" or why not.
std::string PST_EditDefault(PST_Form *form, uint32_t entry);
// Reads a data file beside the target's values; with isEdit its values are typed in, too,
// except read-only ones. 0, or -1 with the reasons: nothing has changed.
int PST_LoadIntoForm(PST_Form *form, const std::string &path, bool isEdit, PST_Problems *problems);

// Whether a group is `group` or lies in it: "Motor/Limits" lies in "Motor", "Motors" does not.
bool PST_IsInGroup(const std::string &name, const std::string &group);
// Entries of a group and the groups inside of it, in the header's order; "" = all of them.
// With isOnlyMarked those that are changed or differ from the file.
std::vector<uint32_t> PST_ListEntries(const PST_Form &form, const std::string &group,
                                      bool isOnlyMarked);

// The job that writes these entries with their mirrors: the target's values are read first.
// PST_OK or a code of the restore.
int PST_PrepareWrite(PST_Form *form, const std::vector<uint32_t> &entries, PST_Restore *job,
                     const PST_Progress &progress);
// Takes over what the job has read back; what was written is not typed any more.
void PST_FinishWrite(PST_Form *form, const PST_Restore &job);

#endif
