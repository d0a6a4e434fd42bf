#include "runtime/qt/text_box.h"

#include <QScrollBar>
#include <QTextBlock>
#include <QTimer>

namespace {

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
    setMaximumBlockCount(MAX_LINES);
    setTabChangesFocus(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void TextBox::appendText(const QString &text)
{
    if (m_isPending)
        m_pending += Clean(text);
    else
        append(Clean(text));
}

void TextBox::append(const QString &text)
{
    if (text.isEmpty())
        return;
    const bool wasAtEnd = isAtEnd();
    QString added = m_hasLines && !m_isLineOpen ? '\n' + text : text;
    m_isLineOpen = !text.endsWith('\n');
    if (!m_isLineOpen)
        added.chop(1);
    m_hasLines = true;
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(added);
    follow(wasAtEnd);
}

void TextBox::resetText(const QString &text)
{
    m_pending = Clean(text);
    if (m_isPending)
        return;
    m_isPending = true;
    QTimer::singleShot(0, this, &TextBox::applyPending);
}

void TextBox::applyPending()
{
    if (!m_isPending)
        return;
    m_isPending = false;
    QString text;
    text.swap(m_pending);
    const bool isLineOpen = !text.endsWith('\n');
    const QString shown = isLineOpen ? text : text.chopped(1);
    m_hasLines = !text.isEmpty();
    m_isLineOpen = m_hasLines && isLineOpen;
    if (shown != toPlainText())
        replaceAll(shown);
}

void TextBox::replaceAll(const QString &text)
{
    const QTextCursor before = textCursor();
    const int anchor = before.anchor(), position = before.position();
    const int top = verticalScrollBar()->value(), left = horizontalScrollBar()->value();
    setPlainText(text);
    const int last = document()->characterCount() - 1;
    QTextCursor cursor(document());
    cursor.setPosition(qMin(anchor, last));
    cursor.setPosition(qMin(position, last), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    verticalScrollBar()->setValue(top);
    horizontalScrollBar()->setValue(left);
}

bool TextBox::insertLine(int line, const QString &text)
{
    applyPending();
    const int count = lineCount();
    if (line < -1 || line > count)
        return false;
    if (line == -1 || line == count) {
        m_isLineOpen = false;
        append(Clean(text) + '\n');
        return true;
    }
    QTextCursor cursor(document()->findBlockByNumber(line));
    cursor.insertText(Clean(text) + '\n');
    return true;
}

bool TextBox::deleteLines(int line, int count)
{
    const int total = lineCount();
    if (line < 0 || line >= total)
        return false;
    const int end = count < 0 || count > total - line ? total : line + count;
    if (line == 0 && end == total) {
        clear();
        m_hasLines = m_isLineOpen = false;
        return true;
    }
    QTextCursor cursor(document()->findBlockByNumber(line));
    if (end < total) {
        cursor.setPosition(document()->findBlockByNumber(end).position(), QTextCursor::KeepAnchor);
    } else {
        cursor.movePosition(QTextCursor::PreviousCharacter); // the feed before the first of them
        cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
        m_isLineOpen = false;
    }
    cursor.removeSelectedText();
    return true;
}

int TextBox::lineCount()
{
    applyPending();
    return m_hasLines ? document()->blockCount() : 0;
}

QString TextBox::lineText(int line)
{
    if (line < 0 || line >= lineCount())
        return QString();
    const QString text = document()->findBlockByNumber(line).text();
    return text.isNull() ? QString("") : text;
}

QString TextBox::allText()
{
    applyPending();
    return toPlainText();
}

int TextBox::firstVisibleLine()
{
    applyPending();
    return verticalScrollBar()->value();
}

void TextBox::setFirstVisibleLine(int line)
{
    applyPending();
    verticalScrollBar()->setValue(line);
    m_follows = isAtEnd();
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

void TextBox::showEvent(QShowEvent *event)
{
    QPlainTextEdit::showEvent(event);
    if (m_follows)
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}
