// A box of many lines that the program writes and the user reads, selects and copies.
// Keeps at most MAX_LINES; while the user looks at its end it stays at the end. A box
// that is emptied and filled again with the same text is not touched at all, so that
// a selection in it survives periodic refreshes.
#ifndef RUNTIME_QT_TEXT_BOX_H
#define RUNTIME_QT_TEXT_BOX_H

#include <QPlainTextEdit>

class TextBox : public QPlainTextEdit {
    Q_OBJECT

public:
    static constexpr int MAX_LINES = 20000;

    explicit TextBox(QWidget *parent = nullptr);

    // A line feed at the end of `text` ends the line; without one more may follow it.
    void appendText(const QString &text);
    void resetText(const QString &text);
    bool insertLine(int line, const QString &text); // -1 = at the end; false: no such line
    bool deleteLines(int line, int count);          // count -1 = to the end
    int lineCount();
    QString lineText(int line); // null when there is no such line
    QString allText();
    int firstVisibleLine();
    void setFirstVisibleLine(int line); // as far as the text reaches
    void applyPending();                // what was written since the box was emptied

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void append(const QString &text);
    void replaceAll(const QString &text);
    void follow(bool wasAtEnd);
    bool isAtEnd() const;

    bool m_hasLines = false;   // tells an empty box from one empty line
    bool m_isLineOpen = false; // the last line has not seen its line feed
    bool m_isPending = false;
    bool m_follows = true; // the end was in view when the box last had a size
    QString m_pending;
};

#endif
