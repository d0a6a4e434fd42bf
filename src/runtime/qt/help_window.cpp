// The help window: a Markdown file with its contents beside it and a search above. It is the
// view's own: the program only says which file.
#include "runtime/qt/qt_view.h"

#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QShortcut>
#include <QSplitter>
#include <QTextBlock>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "runtime/qt/panel_window.h"

namespace {

constexpr int WIDTH = 820, HEIGHT = 560, CONTENTS_WIDTH = 190; // pixels
constexpr int CONTENTS_DEPTH = 2;                              // levels of headings
constexpr int HEADING_SPACE = 12, PARAGRAPH_SPACE = 6;         // pixels
const char LAYOUT[] = "help";                                  // left, top, size, its two parts
constexpr qint64 FILE_SIZE_MAX = 1 << 20;                      // bytes

class HelpWindow : public QWidget {
public:
    explicit HelpWindow(QWidget *owner) : QWidget(owner, Qt::Window)
    {
        setWindowTitle("Vireo2 help");
        setObjectName("help");
        m_contents->setObjectName("contents");
        m_contents->setAccessibleName("Contents");
        m_search->setObjectName("search");
        m_search->setPlaceholderText("Search (Enter: next)");
        m_search->setClearButtonEnabled(true);
        m_found->setTextFormat(Qt::PlainText);
        m_text->setObjectName("text");
        m_text->setOpenLinks(false);
        arrange();
        const std::vector<int> place = QTV_FindLayout(LAYOUT);
        if (place.size() == 6) {
            m_hasPlace = PanelWindow::placeOnScreen(this, QPoint(place[0], place[1]));
            resize(place[2], place[3]);
            m_split->setSizes({place[4], place[5]});
        } else {
            resize(WIDTH, HEIGHT);
            m_split->setSizes({CONTENTS_WIDTH, WIDTH - CONTENTS_WIDTH});
        }
        connect(m_split, &QSplitter::splitterMoved, this, &HelpWindow::keepPlace);
        connect(m_search, &QLineEdit::textEdited, this, [this] { find(false); });
        connect(m_search, &QLineEdit::returnPressed, this, [this] { find(true); });
        connect(m_contents, &QListWidget::currentRowChanged, this, &HelpWindow::turnTo);
        connect(m_contents, &QListWidget::itemClicked, this,
                [this] { turnTo(m_contents->currentRow()); });
        connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
            m_search->setFocus();
            m_search->selectAll();
        });
    }

    void show(const QString &path)
    {
        QFile file(path);
        const bool isRead = file.open(QIODevice::ReadOnly);
        const QString text = isRead ? QString::fromUtf8(file.read(FILE_SIZE_MAX))
                                    : "The help text cannot be read: " + path;
        if (text != m_shown) { // else the reader stays where he was
            m_shown = text;
            m_text->setMarkdown(text);
            spaceParagraphs();
            listHeadings();
        }
        if (!isVisible())
            PanelWindow::fit(this, m_hasPlace);
        QWidget::show();
        raise();
        activateWindow();
        m_search->setFocus();
    }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Escape)
            close();
        else
            QWidget::keyPressEvent(event);
    }

    void moveEvent(QMoveEvent *event) override
    {
        QWidget::moveEvent(event);
        keepPlace();
    }
    void resizeEvent(QResizeEvent *event) override
    {
        QWidget::resizeEvent(event);
        keepPlace();
    }

private:
    void keepPlace()
    {
        const QList<int> parts = m_split->sizes();
        m_hasPlace = m_hasPlace || isVisible();
        if (isVisible() && parts.size() == 2)
            QTV_KeepLayout(LAYOUT, {x(), y(), width(), height(), parts[0], parts[1]});
    }

    void arrange()
    {
        auto *top = new QHBoxLayout;
        top->addWidget(m_search, 1);
        top->addWidget(m_found);
        m_split->addWidget(m_contents);
        m_split->addWidget(m_text);
        m_split->setStretchFactor(1, 1);
        auto *rows = new QVBoxLayout(this);
        rows->addLayout(top);
        rows->addWidget(m_split, 1);
    }

    // The reader of Markdown sets paragraphs without air between them.
    void spaceParagraphs()
    {
        QTextCursor cursor(m_text->document());
        for (QTextBlock block = m_text->document()->begin(); block.isValid();
             block = block.next()) {
            QTextBlockFormat format = block.blockFormat();
            if (format.hasProperty(QTextFormat::BlockCodeFence))
                continue;
            format.setTopMargin(format.headingLevel() > 0 ? HEADING_SPACE : 0);
            format.setBottomMargin(PARAGRAPH_SPACE);
            cursor.setPosition(block.position());
            cursor.setBlockFormat(format);
        }
    }

    void listHeadings()
    {
        m_contents->clear();
        const QTextDocument *document = m_text->document();
        for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
            const int level = block.blockFormat().headingLevel();
            if (level < 1 || level > CONTENTS_DEPTH)
                continue;
            auto *item = new QListWidgetItem(block.text(), m_contents);
            item->setData(Qt::UserRole, block.position());
        }
    }

    void turnTo(int row)
    {
        const QListWidgetItem *item = m_contents->item(row);
        if (!item)
            return;
        QTextCursor cursor(m_text->document());
        cursor.movePosition(QTextCursor::End); // so that the heading comes to the top
        m_text->setTextCursor(cursor);
        cursor.setPosition(item->data(Qt::UserRole).toInt());
        m_text->setTextCursor(cursor);
    }

    // From where the last one was found, or behind it; after the end from the beginning.
    void find(bool isNext)
    {
        const QString wanted = m_search->text();
        QTextCursor cursor = m_text->textCursor();
        cursor.setPosition(isNext ? cursor.selectionEnd() : cursor.selectionStart());
        m_text->setTextCursor(cursor);
        if (wanted.isEmpty()) {
            m_found->clear();
            return;
        }
        bool isFound = m_text->find(wanted);
        if (!isFound) {
            m_text->moveCursor(QTextCursor::Start);
            isFound = m_text->find(wanted);
        }
        m_found->setText(isFound ? "" : "not found");
    }

    QSplitter *m_split = new QSplitter(this);
    QListWidget *m_contents = new QListWidget(this);
    QLineEdit *m_search = new QLineEdit(this);
    QLabel *m_found = new QLabel(this);
    QTextBrowser *m_text = new QTextBrowser(this);
    QString m_shown;
    bool m_hasPlace = false;
};

QPointer<HelpWindow> window; // goes with the main one

} // namespace

void QTV_ShowHelp(const std::string &path)
{
    if (!window)
        window = new HelpWindow(QTV_MainWindow());
    window->show(QTV_ToQt(path));
}
