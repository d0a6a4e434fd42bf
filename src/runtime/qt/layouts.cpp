// What windows remember beside the place and size of their panels: sizes of splitters, and
// by name whatever a window asks to be kept.
#include "runtime/qt/qt_view.h"

#include <QSplitter>
#include <map>

#include "runtime/qt/panel_window.h"

namespace {

std::map<std::string, std::vector<int>> layouts;

std::string NameOf(const QTV_Panel &panel, const QSplitter &splitter)
{
    return std::to_string(panel.row->panel) + "." + splitter.objectName().toStdString();
}

// Only if it still has as many parts as when the sizes were kept.
void Arrange(const QTV_Panel &panel, QSplitter *splitter)
{
    const std::vector<int> sizes = QTV_FindLayout(NameOf(panel, *splitter));
    if (static_cast<int>(sizes.size()) == splitter->count())
        splitter->setSizes(QList<int>(sizes.begin(), sizes.end()));
}

QList<QSplitter *> SplittersOf(const QTV_Panel &panel)
{
    QList<QSplitter *> splitters = panel.window->findChildren<QSplitter *>();
    // Windows that belong to this one have their own, and Qt finds them as its children.
    splitters.removeIf([&panel](const QSplitter *splitter) {
        return PanelWindow::holding(splitter->parentWidget()) != panel.window;
    });
    return splitters;
}

} // namespace

void QTV_UseLayout(const UI_Layout &layout)
{
    layouts[layout.name] = layout.numbers;
    // Settings are read after some panels were loaded; those that come later look it up themselves.
    for (int i = 0; i < UI_cnPanels; i++) {
        const QTV_Panel *panel = QTV_FindPanel(UI_aPanels[i].panel);
        if (!panel->window)
            continue;
        for (QSplitter *splitter : SplittersOf(*panel))
            Arrange(*panel, splitter);
    }
}

std::vector<int> QTV_FindLayout(const std::string &name)
{
    const auto found = layouts.find(name);
    return found == layouts.end() ? std::vector<int>() : found->second;
}

void QTV_KeepLayout(const std::string &name, const std::vector<int> &numbers)
{
    if (QTV_FindLayout(name) == numbers) // a splitter reports each pixel of a drag, and its end
        return;
    layouts[name] = numbers;
    VIEW_Event event = VIEW_MakeEvent(VIEW_EVENT_LAYOUT);
    event.text = name;
    event.widths = numbers;
    QTV_Post(event);
}

void QTV_ForgetLayouts()
{
    layouts.clear();
}

void QTV_RememberSplitters(QTV_Panel *panel)
{
    for (QSplitter *splitter : SplittersOf(*panel)) {
        Arrange(*panel, splitter);
        QObject::connect(splitter, &QSplitter::splitterMoved, [panel, splitter] {
            const QList<int> sizes = splitter->sizes();
            QTV_KeepLayout(NameOf(*panel, *splitter), {sizes.begin(), sizes.end()});
        });
    }
}
