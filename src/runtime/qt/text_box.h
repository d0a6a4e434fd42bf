// A box of many lines that the program writes and the user reads, selects and copies.
// Bounded; while the user looks at its end it stays at the end. A box that is given the
// same text again is not touched at all, so that a selection in it survives refreshes.
#ifndef RUNTIME_QT_TEXT_BOX_H
#define RUNTIME_QT_TEXT_BOX_H

#include <QPlainTextEdit>

class TextBox : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit TextBox(QWidget *parent = nullptr);

    // A line feed at the end of `text` ends the line; without one more may follow it.
    void appendText(const QString &text);
    void resetText(const QString &text);
    void dropLines(int count);          // from the top; what stays in view stays where it is
    void setFirstVisibleLine(int line); // as far as the text reaches
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void replaceAll(const QString &text);
    void follow(bool wasAtEnd);
    bool isAtEnd() const;

    bool m_hasLines = false;   // tells an empty box from one empty line
    bool m_isLineOpen = false; // the last line has not seen its line feed
    bool m_follows = true;     // the end was in view when the box last had a size
};

#endif
