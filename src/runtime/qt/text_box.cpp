// Qt counts a text that ends with a line feed as having an empty last line. Here that line does not
// exist: the last feed is held back until more text comes (m_isLineOpen).
#include "runtime/qt/text_box.h"

#include <QScrollBar>
#include <QTextBlock>

#include "runtime/userint.h"

namespace {

constexpr int LINES_AT_FIRST = 6; // what a box asks room for
constexpr int WIDTH_HINT = 400;   // pixels
constexpr int TEXT_MARGINS = 8;   // pixels above and below the text together

// Of CR LF the feed ends the line; a zero byte of the target is to be seen, not swallowed.
QString Clean(QString text)
{
    text.remove('\r').replace(QChar::Null, QChar::ReplacementCharacter);
    return text;
}

} // namespace

TextBox::TextBox(QWidget *parent) : QPlainTextEdit(parent)
{
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setMaximumBlockCount(UI_BOX_LINES_MAX);
    setTabChangesFocus(true); // nobody types a tab here
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void TextBox::appendText(const QString &text)
{
    const QString cleaned = Clean(text);
    if (cleaned.isEmpty())
        return;
    const bool wasAtEnd = isAtEnd();
    QString added = m_hasLines && !m_isLineOpen ? '\n' + cleaned : cleaned;
    m_isLineOpen = !cleaned.endsWith('\n');
    if (!m_isLineOpen)
        added.chop(1);
    m_hasLines = true;
    QTextCursor cursor(document()); // not the box's own: the user's selection stays
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(added);
    follow(wasAtEnd);
}

void TextBox::resetText(const QString &text)
{
    const QString cleaned = Clean(text);
    m_hasLines = !cleaned.isEmpty();
    m_isLineOpen = m_hasLines && !cleaned.endsWith('\n');
    const QString shown = m_isLineOpen ? cleaned : cleaned.chopped(m_hasLines ? 1 : 0);
    if (shown != toPlainText())
        replaceAll(shown);
}

void TextBox::dropLines(int count)
{
    const int top = verticalScrollBar()->value();
    const bool wasAtEnd = isAtEnd();
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor, count);
    cursor.removeSelectedText();
    if (wasAtEnd)
        follow(true);
    else
        verticalScrollBar()->setValue(qMax(0, top - count));
}

void TextBox::replaceAll(const QString &text)
{
    // As far as the new text goes, selection and scrolling stay: a trace is written anew once a
    // second while somebody reads in it.
    const QTextCursor before = textCursor();
    const int anchor = before.anchor(), position = before.position();
    const int top = verticalScrollBar()->value(), left = horizontalScrollBar()->value();
    const bool wasAtEnd = isAtEnd();
    setPlainText(text);
    const int last = document()->characterCount() - 1;
    QTextCursor cursor(document());
    cursor.setPosition(qMin(anchor, last));
    cursor.setPosition(qMin(position, last), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    verticalScrollBar()->setValue(top);
    horizontalScrollBar()->setValue(left);
    if (wasAtEnd && top > 0) // a text that fits is at its end and at its top: then the top counts
        follow(true);
}

void TextBox::setFirstVisibleLine(int line)
{
    verticalScrollBar()->setValue(line);
    m_follows = isAtEnd();
}

QSize TextBox::sizeHint() const
{
    return QSize(WIDTH_HINT,
                 LINES_AT_FIRST * fontMetrics().lineSpacing() + 2 * frameWidth() + TEXT_MARGINS);
}

bool TextBox::isAtEnd() const
{
    return verticalScrollBar()->value() == verticalScrollBar()->maximum();
}

void TextBox::follow(bool wasAtEnd)
{
    if (!wasAtEnd && m_follows)
        wasAtEnd = !isVisible(); // out of sight nobody can have scrolled away
    if (wasAtEnd)
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    m_follows = wasAtEnd;
}

void TextBox::resizeEvent(QResizeEvent *event)
{
    const bool wasAtEnd = isAtEnd();
    QPlainTextEdit::resizeEvent(event);
    if (wasAtEnd && m_follows)
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

// A hidden box does not scroll: it catches up when it is seen.
void TextBox::showEvent(QShowEvent *event)
{
    QPlainTextEdit::showEvent(event);
    if (m_follows)
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}
