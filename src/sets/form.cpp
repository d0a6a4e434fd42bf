// What a user sees of a set: the target's values, a file's beside them, and what has been typed and
// not written yet. No window in here: the console program could show the same.
#include "sets/form.h"

#include "sets/value.h"

#include <algorithm>

namespace {

// Read-only, or outside of the limits.
std::string WhyNot(const PST_Set &set, uint32_t entry, const PST_Bytes &bytes)
{
    const PST_Entry &at = set.entries[entry];
    const PST_Attributes &attributes = PST_AttributesOf(set, at);
    if (attributes.isReadOnly)
        return "'" + at.name + "' is read-only.";
    return PST_CheckLimits(attributes, at, bytes);
}

} // namespace

int PST_OpenForm(const std::string &header, PST_Form *form, PST_Problems *problems)
{
    // Into a form of its own: a header with a fault leaves the open one as it is.
    PST_Form fresh;
    if (PST_ReadHeader(header, &fresh.set, problems) != 0)
        return -1;
    fresh.isOpen = true;
    fresh.device.resize(fresh.set.places.size());
    fresh.file.resize(fresh.set.entries.size());
    fresh.edited.resize(fresh.set.entries.size());
    *form = std::move(fresh);
    return 0;
}

// Another map may have moved everything: addresses come from it anew, and of what was typed stays
// what still fits its place. The target's values go, because they were read elsewhere.
int PST_ReopenForm(PST_Form *form, PST_Problems *problems)
{
    PST_Form fresh;
    if (PST_OpenForm(form->set.path, &fresh, problems) != 0)
        return -1;
    for (size_t i = 0; i < form->edited.size(); ++i) {
        const PST_Entry &old = form->set.entries[i];
        const auto found = fresh.set.byName.find(old.name);
        if (found == fresh.set.byName.end() || !form->edited[i].isThere ||
            fresh.set.entries[found->second].type != old.type)
            continue;
        if (WhyNot(fresh.set, found->second, form->edited[i].bytes).empty())
            fresh.edited[found->second] = form->edited[i];
    }
    *form = std::move(fresh);
    return 0;
}

const PST_Held &PST_FormValue(const PST_Form &form, uint32_t entry)
{
    return form.edited[entry].isThere ? form.edited[entry] : form.device[entry];
}

bool PST_IsChanged(const PST_Form &form, uint32_t entry)
{
    return form.edited[entry].isThere &&
           !PST_IsSame(form.set.entries[entry], form.edited[entry], form.device[entry]);
}

bool PST_IsOther(const PST_Form &form, uint32_t entry)
{
    return form.file[entry].isThere && form.device[entry].isThere &&
           !PST_IsSame(form.set.entries[entry], form.file[entry], form.device[entry]);
}

std::string PST_EditForm(PST_Form *form, uint32_t entry, const std::string &text)
{
    // An emptied field takes the typed value back.
    if (text.find_first_not_of(" \t") == std::string::npos) {
        form->edited[entry] = PST_Held();
        return "";
    }
    const PST_Entry &at = form->set.entries[entry];
    const PST_Attributes &attributes = PST_AttributesOf(form->set, at);
    PST_Held held;
    std::string why;
    if (PST_ParseShown(at, attributes.factor, text, &held.bytes, &why) == 0)
        why = WhyNot(form->set, entry, held.bytes);
    if (why.empty()) {
        held.isThere = true;
        // What is shown with fewer digits than it has is not changed by being entered again.
        const PST_Held &device = form->device[entry];
        if (device.isThere && PST_ShownText(at, attributes.factor, device.bytes) == text)
            held = PST_Held();
        form->edited[entry] = held;
    }
    return why;
}

std::string PST_EditDefault(PST_Form *form, uint32_t entry)
{
    const PST_Entry &at = form->set.entries[entry];
    const PST_Attributes &attributes = PST_AttributesOf(form->set, at);
    PST_Held held;
    if (!attributes.hasDefault || PST_PutNumber(at.type, attributes.defaultValue, &held.bytes) != 0)
        return "'" + at.name + "' has no default.";
    // The header's reader has checked it against the limits, but not whether it may be written.
    const std::string why = WhyNot(form->set, entry, held.bytes);
    held.isThere = true;
    if (why.empty())
        form->edited[entry] = held;
    return why;
}

int PST_LoadIntoForm(PST_Form *form, const std::string &path, bool isEdit, PST_Problems *problems)
{
    PST_File file;
    PST_Image values;
    if (PST_ReadData(path, &file, problems) != 0 ||
        PST_Bind(form->set, file, &values, nullptr, problems) != 0)
        return -1;
    // A file with a fault in any line changes nothing: half a file would be typed in otherwise.
    form->file = values;
    form->filePath = path;
    for (uint32_t i = 0; isEdit && i < values.size(); ++i)
        if (values[i].isThere && !PST_AttributesOf(form->set, form->set.entries[i]).isReadOnly)
            form->edited[i] = values[i];
    return 0;
}

bool PST_IsInGroup(const std::string &name, const std::string &group)
{
    return group.empty() || name == group ||
           (name.compare(0, group.size(), group) == 0 && name[group.size()] == '/');
}

std::vector<uint32_t> PST_ListEntries(const PST_Form &form, const std::string &group,
                                      bool isOnlyMarked)
{
    std::vector<uint32_t> entries;
    for (uint32_t i = 0; i < form.set.entries.size(); ++i) {
        const PST_Item &item = form.set.items[form.set.entries[i].item];
        if (PST_IsInGroup(form.set.groups[item.group], group) &&
            (!isOnlyMarked || PST_IsChanged(form, i) || PST_IsOther(form, i)))
            entries.push_back(i);
    }
    return entries;
}

// Reads the target once more: the question shows what is there now, and not what was read when the
// window was opened.
int PST_PrepareWrite(PST_Form *form, const std::vector<uint32_t> &entries, PST_Restore *job,
                     const PST_Progress &progress)
{
    *job = PST_Restore();
    job->set = form->set;
    job->wanted.resize(form->set.entries.size());
    job->lines.resize(form->set.entries.size());
    // The undo file will stand beside it.
    job->file.path = form->filePath.empty() ? form->set.path : form->filePath;
    for (const uint32_t entry : entries)
        job->wanted[entry] = PST_FormValue(*form, entry);
    std::vector<uint32_t> places;
    for (uint32_t place = 0; place < job->set.places.size(); ++place)
        if (job->wanted[job->set.places[place].entry].isThere)
            places.push_back(place);
    job->before.resize(job->set.places.size());
    const int result = PST_ReadPlaces(job->set, places, &job->before, progress, &job->why);
    if (result != PST_OK)
        return result;
    for (const uint32_t place : places) {
        const uint32_t entry = job->set.places[place].entry;
        form->device[place] = job->before[place];
        if (!PST_IsSame(job->set.entries[entry], job->wanted[entry], job->before[place]) &&
            !PST_AttributesOf(job->set, job->set.entries[entry]).isReadOnly)
            job->writes.push_back(place);
    }
    job->states.assign(job->set.places.size(), PST_UNTOUCHED);
    return PST_OK;
}

void PST_FinishWrite(PST_Form *form, const PST_Restore &job)
{
    for (const uint32_t place : job.writes) {
        const uint32_t entry = job.set.places[place].entry;
        const PST_State state = job.states[place];
        if (state == PST_WRITTEN || state == PST_DIFFERENT)
            form->device[place] = job.after[place];
        else if (state != PST_UNTOUCHED)
            form->device[place] = PST_Held(); // nobody knows what it holds
        // A mirror that was written says nothing about the value itself.
        if (place == entry && state == PST_WRITTEN)
            form->edited[entry] = PST_Held();
    }
}
