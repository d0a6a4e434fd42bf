// The text box calls of runtime/userint.h.
#include "runtime/qt/face.h"

#include "runtime/qt/text_box.h"

namespace {

int FindBox(int panel, int control, TextBox **box)
{
    FaceControl *found = nullptr;
    const int error = FACE_FindControl(panel, control, &found);
    if (error < 0)
        return error;
    *box = qobject_cast<TextBox *>(found->widget);
    return *box ? 0 : UIE_BAD_TYPE;
}

} // namespace

int ResetTextBox(int panel, int control, const std::string &text)
{
    TextBox *box = nullptr;
    const int error = FindBox(panel, control, &box);
    if (error == 0)
        box->resetText(FACE_ToQt(text));
    return error;
}

int InsertTextBoxLine(int panel, int control, int line, const std::string &text)
{
    TextBox *box = nullptr;
    const int error = FindBox(panel, control, &box);
    if (error < 0)
        return error;
    return box->insertLine(line, FACE_ToQt(text)) ? 0 : UIE_BAD_INDEX;
}

int DeleteTextBoxLines(int panel, int control, int line, int count)
{
    TextBox *box = nullptr;
    const int error = FindBox(panel, control, &box);
    if (error < 0)
        return error;
    return box->deleteLines(line, count) ? 0 : UIE_BAD_INDEX;
}

int GetNumTextBoxLines(int panel, int control, int *count)
{
    TextBox *box = nullptr;
    const int error = FindBox(panel, control, &box);
    if (error == 0)
        *count = box->lineCount();
    return error;
}

int GetTextBoxLine(int panel, int control, int line, std::string *text)
{
    TextBox *box = nullptr;
    const int error = FindBox(panel, control, &box);
    if (error < 0)
        return error;
    const QString found = box->lineText(line);
    if (found.isNull())
        return UIE_BAD_INDEX;
    *text = FACE_ToStd(found);
    return 0;
}
