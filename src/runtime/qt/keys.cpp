// Keys: from Qt's codes to those of runtime/userint.h, and on their way to a widget first
// past the key table, which says who wants them and what remains of them for the widget.
#include "runtime/qt/qt_view.h"

#include <QApplication>
#include <QKeyEvent>

#include "runtime/qt/panel_window.h"

namespace {

constexpr int KEY_MASK = 0xFFF; // a key code without its modifiers

struct KeyRow {
    int qtKey;
    int code;
};

const KeyRow KEY_ROWS[] = {
    {Qt::Key_Return, KEY_ENTER},
    {Qt::Key_Enter, KEY_ENTER},
    {Qt::Key_Escape, KEY_ESC},
    {Qt::Key_Tab, KEY_TAB},
    {Qt::Key_Backtab, KEY_TAB},
    {Qt::Key_Up, KEY_UP},
    {Qt::Key_Down, KEY_DOWN},
    {Qt::Key_Left, KEY_LEFT},
    {Qt::Key_Right, KEY_RIGHT},
    {Qt::Key_PageUp, KEY_PAGE_UP},
    {Qt::Key_PageDown, KEY_PAGE_DOWN},
    {Qt::Key_Home, KEY_HOME},
    {Qt::Key_End, KEY_END},
    {Qt::Key_Insert, KEY_INSERT},
    {Qt::Key_Delete, KEY_DELETE},
    {Qt::Key_Backspace, KEY_BACKSPACE},
};

int SpecialKey(int qtKey)
{
    for (const KeyRow &row : KEY_ROWS)
        if (row.qtKey == qtKey)
            return row.code;
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24)
        return KEY_F1 + (qtKey - Qt::Key_F1);
    return 0;
}

bool IsPrintable(int code)
{
    return code >= 0x20 && code < 0x7F;
}

// Posts the key to those the table names. Whether it is swallowed there.
bool Offer(const QTV_Panel &panel, const QTV_Control *control, int code)
{
    const int number = panel.row->panel;
    if (control) {
        const UI_KeyRow *row = UI_FindKey(number, control->row->control, code);
        if (row)
            QTV_PostControl(*control, EVENT_KEYPRESS, code);
        if (row && row->isSwallowed)
            return true;
    }
    const UI_KeyRow *row = UI_FindKey(number, 0, code);
    if (row)
        QTV_PostPanel(number, EVENT_KEYPRESS, code);
    // Arrows would walk from button to button; in this program they belong to the list.
    const bool isArrowOnButton =
        control && (code == KEY_UP || code == KEY_DOWN) &&
        (control->row->kind == UIK_BUTTON || control->row->kind == UIK_SWITCH);
    return (row && row->isSwallowed) || isArrowOnButton;
}

// One filter for the whole application: a key passes it before any widget, and the key table holds
// for widgets that know nothing of it.
class KeyRouter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        auto *receiver = qobject_cast<QWidget *>(object);
        if (!receiver)
            return false;
        if (QApplication::activePopupWidget()) // an open ring or menu takes its keys itself
            return false;
        // An ignored key climbs to the parents; it is offered on its first stop only.
        if (receiver->focusWidget() && receiver->focusWidget() != receiver)
            return false;
        PanelWindow *window = PanelWindow::holding(receiver);
        if (!window || receiver->window() != window->window())
            return false; // the list of an open ring has its keys to itself
        // A field that edits a cell of a list has its keys to itself.
        const QTV_Control *control = QTV_ControlOf(receiver);
        if (control && control->row->kind == UIK_LIST && receiver->inherits("QLineEdit"))
            return false;
        const auto *key = static_cast<QKeyEvent *>(event);
        const int code = QTV_KeyCode(key->key(), key->modifiers(), key->text());
        const QTV_Panel &panel = *window->record();
        if (code == 0)
            return false;
        if (Offer(panel, control, code))
            return true;
        // Escape leaves every window but the main one, if nothing in it wanted the key.
        if (code != KEY_ESC || panel.parent || panel.row->panel == UI_nMenuPanel)
            return false;
        QTV_PostPanel(panel.row->panel, EVENT_CLOSE);
        return true;
    }
};

} // namespace

int QTV_KeyCode(int qtKey, Qt::KeyboardModifiers modifiers, const QString &text)
{
    int flags = 0;
    if (modifiers & Qt::ControlModifier)
        flags |= KEY_CTRL;
    if (modifiers & Qt::AltModifier)
        flags |= KEY_ALT;
    const int shift = modifiers & Qt::ShiftModifier ? KEY_SHIFT : 0;
    const int special = SpecialKey(qtKey);
    if (special != 0)
        return special | flags | (qtKey == Qt::Key_Backtab ? KEY_SHIFT : shift);
    // With Ctrl or Alt there is no text, or a control character: the key itself counts.
    if (flags != 0)
        return IsPrintable(qtKey) ? qtKey | flags | shift : 0;
    // What was typed already tells whether Shift was down.
    const int typed = text.size() == 1 ? text.at(0).unicode() : 0;
    return IsPrintable(typed) ? typed : 0;
}

int QTV_QtKey(int code)
{
    const int key = code & KEY_MASK;
    if (key >= KEY_F1)
        return Qt::Key_F1 + (key - KEY_F1);
    for (const KeyRow &row : KEY_ROWS)
        if (row.code == key)
            return row.qtKey;
    return IsPrintable(key) ? key : 0;
}

void QTV_InstallKeyRouting()
{
    qApp->installEventFilter(new KeyRouter(qApp));
}
