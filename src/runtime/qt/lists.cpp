// The list calls of runtime/userint.h, for lists and for rings.
#include "runtime/qt/face.h"

#include <QComboBox>
#include <QSignalBlocker>

#include "runtime/qt/line_list.h"

namespace {

// One of the two is set; a ring keeps its lines in the combo box itself.
struct Lines {
    LineList *list = nullptr;
    QComboBox *ring = nullptr;
};

int FindLines(int panel, int control, Lines *lines)
{
    FaceControl *found = nullptr;
    const int error = FACE_FindControl(panel, control, &found);
    if (error < 0)
        return error;
    lines->list = qobject_cast<LineList *>(found->widget);
    lines->ring = qobject_cast<QComboBox *>(found->widget);
    return lines->list || lines->ring ? 0 : UIE_BAD_TYPE;
}

int Count(const Lines &lines)
{
    return lines.ring ? lines.ring->count() : static_cast<int>(lines.list->lines().size());
}

int FindLine(int panel, int control, int index, Lines *lines)
{
    const int error = FindLines(panel, control, lines);
    if (error < 0)
        return error;
    return index >= 0 && index < Count(*lines) ? 0 : UIE_BAD_INDEX;
}

// The entries of the Designer file have no value of their own: theirs is the index.
int RingValue(const QComboBox *ring, int index)
{
    const QVariant value = ring->itemData(index);
    return value.isValid() ? value.toInt() : index;
}

} // namespace

int ClearListCtrl(int panel, int control)
{
    Lines lines;
    const int error = FindLines(panel, control, &lines);
    if (error < 0)
        return error;
    if (lines.list) {
        lines.list->clearLines();
    } else {
        const QSignalBlocker quiet(lines.ring);
        lines.ring->clear();
    }
    return 0;
}

int InsertListItem(int panel, int control, int index, const std::string &label, int value)
{
    Lines lines;
    const int error = FindLines(panel, control, &lines);
    if (error < 0)
        return error;
    if (index < -1 || index > Count(lines))
        return UIE_BAD_INDEX;
    const int at = index == -1 ? Count(lines) : index;
    if (lines.list) {
        lines.list->insertLine(at, {label, value, ""});
    } else {
        const QSignalBlocker quiet(lines.ring);
        lines.ring->insertItem(at, FACE_ToQt(label), value);
    }
    return 0;
}

int ReplaceListItem(int panel, int control, int index, const std::string &label, int value)
{
    Lines lines;
    const int error = FindLine(panel, control, index, &lines);
    if (error < 0)
        return error;
    if (lines.list) {
        const std::string tip = lines.list->lines()[static_cast<size_t>(index)].tip;
        lines.list->setLine(index, {label, value, tip});
    } else {
        lines.ring->setItemText(index, FACE_ToQt(label));
        lines.ring->setItemData(index, value);
    }
    return 0;
}

int DeleteListItem(int panel, int control, int index, int count)
{
    Lines lines;
    const int error = FindLine(panel, control, index, &lines);
    if (error < 0)
        return error;
    if (count < 0 || count > Count(lines) - index)
        return UIE_BAD_INDEX;
    if (lines.list) {
        lines.list->deleteLines(index, count);
    } else {
        const QSignalBlocker quiet(lines.ring);
        for (int i = 0; i < count; i++)
            lines.ring->removeItem(index);
    }
    return 0;
}

int GetNumListItems(int panel, int control, int *count)
{
    Lines lines;
    const int error = FindLines(panel, control, &lines);
    if (error == 0)
        *count = Count(lines);
    return error;
}

int GetCtrlIndex(int panel, int control, int *index)
{
    Lines lines;
    const int error = FindLines(panel, control, &lines);
    if (error == 0)
        *index = lines.list ? lines.list->selected() : lines.ring->currentIndex();
    return error;
}

int SetCtrlIndex(int panel, int control, int index)
{
    Lines lines;
    const int error = FindLine(panel, control, index, &lines);
    if (error < 0)
        return error;
    if (lines.list)
        lines.list->select(index);
    else
        lines.ring->setCurrentIndex(index);
    return 0;
}

int GetLabelFromIndex(int panel, int control, int index, std::string *label)
{
    Lines lines;
    const int error = FindLine(panel, control, index, &lines);
    if (error < 0)
        return error;
    *label = lines.list ? lines.list->lines()[static_cast<size_t>(index)].label
                        : FACE_ToStd(lines.ring->itemText(index));
    return 0;
}

int GetValueFromIndex(int panel, int control, int index, int *value)
{
    Lines lines;
    const int error = FindLine(panel, control, index, &lines);
    if (error < 0)
        return error;
    *value = lines.list ? lines.list->lines()[static_cast<size_t>(index)].value
                        : RingValue(lines.ring, index);
    return 0;
}

int SetListItemTip(int panel, int control, int index, const std::string &tip)
{
    Lines lines;
    const int error = FindLine(panel, control, index, &lines);
    if (error < 0)
        return error;
    if (lines.list) {
        ListLine line = lines.list->lines()[static_cast<size_t>(index)];
        line.tip = tip;
        lines.list->setLine(index, line);
    } else {
        lines.ring->setItemData(index, FACE_ToQt(tip), Qt::ToolTipRole);
    }
    return 0;
}
