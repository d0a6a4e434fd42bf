// The program's looks: one style, one palette, one font size on every system, because
// the main panel has a fixed size in pixels.
#include "runtime/qt/face.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QStyleFactory>

namespace {

constexpr int FONT_PIXELS = 12;
constexpr int ICON_PIXELS = 128;

struct ColorRow {
    QPalette::ColorRole role;
    QRgb color;
};

const ColorRow colorRows[] = {
    {QPalette::Window, 0xFFF1F4F7},
    {QPalette::WindowText, 0xFF1E2A36},
    {QPalette::Base, 0xFFFFFFFF},
    {QPalette::AlternateBase, 0xFFF6F8FA},
    {QPalette::Text, 0xFF1E2A36},
    {QPalette::Button, 0xFFFBFCFD},
    {QPalette::ButtonText, 0xFF1E2A36},
    {QPalette::Highlight, 0xFF2A6DAF},
    {QPalette::HighlightedText, 0xFFFFFFFF},
    {QPalette::PlaceholderText, 0xFF7A8794},
    {QPalette::ToolTipBase, 0xFFFFFFF2},
    {QPalette::ToolTipText, 0xFF1E2A36},
    {QPalette::Link, 0xFF2A6DAF},
};

const ColorRow disabledRows[] = {
    {QPalette::WindowText, 0xFF97A2AD},
    {QPalette::Text, 0xFF97A2AD},
    {QPalette::ButtonText, 0xFF97A2AD},
};

const char styleSheet[] = R"(
QMenuBar { background: #FFFFFF; border-bottom: 1px solid #D5DBE1; }
QMenuBar::item { padding: 2px 9px; background: transparent; }
QMenuBar::item:selected { background: #DCE8F3; border-radius: 3px; }
QPushButton { background: #FFFFFF; border: 1px solid #B9C3CD; border-radius: 4px;
    padding: 4px 12px; min-height: 16px; }
QPushButton:hover { background: #F0F5FA; border-color: #8FA3B5; }
QPushButton:pressed { background: #DCE8F3; }
QPushButton:focus { border: 2px solid #2A6DAF; padding: 3px 11px; }
QPushButton:disabled { background: #F4F6F8; border-color: #D5DBE1; }
QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }
QDialogButtonBox QPushButton, QMessageBox QPushButton { min-width: 64px; }
QLineEdit { background: #FFFFFF; border: 1px solid #B9C3CD; border-radius: 3px; padding: 1px 4px; }
QAbstractSpinBox QLineEdit, QComboBox QLineEdit { border: none; background: transparent; padding: 0px; }
QLineEdit:focus { border: 1px solid #2A6DAF; }
QLineEdit:disabled, QLineEdit:read-only { background: #F4F6F8; }
QListView, QPlainTextEdit { border: 1px solid #C3CCD5; }
QListView:focus, QPlainTextEdit:focus { border: 1px solid #2A6DAF; }
QFrame#sidebar { background: #FFFFFF; border: 1px solid #D5DBE1; border-radius: 5px; }
QLabel#status { font-size: 16px; font-weight: bold; }
QLabel[caption="true"] { color: #5B6874; }
)";

QPalette MakePalette()
{
    QPalette palette;
    for (const ColorRow &row : colorRows)
        palette.setColor(row.role, QColor::fromRgba(row.color));
    for (const ColorRow &row : disabledRows)
        palette.setColor(QPalette::Disabled, row.role, QColor::fromRgba(row.color));
    return palette;
}

// A square wave on a dark screen.
QIcon MakeIcon()
{
    QPixmap pixmap(ICON_PIXELS, ICON_PIXELS);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x1D, 0x3A, 0x57));
    painter.drawRoundedRect(4, 4, ICON_PIXELS - 8, ICON_PIXELS - 8, 22, 22);
    painter.setPen(QPen(QColor(0x6F, 0xE0, 0x9A), 9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const QPoint wave[] = {{20, 84}, {42, 84}, {42, 44}, {66, 44},
                           {66, 84}, {88, 84}, {88, 44}, {108, 44}};
    painter.drawPolyline(wave, sizeof wave / sizeof wave[0]);
    return QIcon(pixmap);
}

} // namespace

void FACE_ApplyLook()
{
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(MakePalette());
    QFont font = QApplication::font();
    font.setPixelSize(FONT_PIXELS);
    QApplication::setFont(font);
    qApp->setStyleSheet(styleSheet);
    QApplication::setWindowIcon(MakeIcon());
}
