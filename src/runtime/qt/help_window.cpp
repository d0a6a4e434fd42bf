// The help window: the pages of the manual with their contents beside them and a search above
// that goes through all of them. It is the view's own: the program only says which file is first.
#include "runtime/qt/qt_view.h"

#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "runtime/qt/help_book.h"
#include "runtime/qt/panel_window.h"

namespace {

constexpr int WIDTH = 980, HEIGHT = 640, CONTENTS_WIDTH = 250; // pixels
constexpr int CONTENTS_DEPTH = 2;                              // levels of headings
constexpr int PLACES_MAX = 100;                                // to go back to
const char LAYOUT[] = "help";                                  // left, top, size, its two parts
enum { ROLE_PAGE = Qt::UserRole, ROLE_POSITION };              // of a line of the contents

struct Place {
    int page = 0;
    int scroll = 0; // pixels
};

class HelpWindow : public QWidget {
public:
    explicit HelpWindow(QWidget *owner) : QWidget(owner, Qt::Window)
    {
        setWindowTitle("Vireo2 help");
        setObjectName("help");
        m_contents->setObjectName("contents");
        m_contents->setAccessibleName("Contents");
        m_search->setObjectName("search");
        m_search->setPlaceholderText("Search all pages (Enter: next)");
        m_search->setClearButtonEnabled(true);
        m_found->setTextFormat(Qt::PlainText);
        // Links are followed by us: the browser would open files that are no pages of the book.
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
        connect(m_split, &QSplitter::splitterMoved, this, &HelpWindow::fitPictures);
        connect(m_search, &QLineEdit::textEdited, this, [this] { find(false); });
        connect(m_search, &QLineEdit::returnPressed, this, [this] { find(true); });
        connect(m_contents, &QListWidget::currentRowChanged, this, &HelpWindow::turnTo);
        connect(m_contents, &QListWidget::itemClicked, this,
                [this] { turnTo(m_contents->currentRow()); });
        connect(m_text, &QTextBrowser::anchorClicked, this, &HelpWindow::follow);
        connect(m_back, &QToolButton::clicked, this, [this] { step(&m_before, &m_behind); });
        connect(m_forward, &QToolButton::clicked, this, [this] { step(&m_behind, &m_before); });
        connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
            m_search->setFocus();
            m_search->selectAll();
        });
    }

    void show(const QString &path)
    {
        const QString first = QFileInfo(path).absoluteFilePath();
        // The reader stays where he was, unless it is another book or its file has changed.
        if (m_book.isEmpty() || m_book[0].path != first || QTV_ReadHelpPage(first) != m_first) {
            m_first = QTV_ReadHelpPage(first);
            m_book = QTV_ReadHelpBook(first);
            m_before.clear();
            m_behind.clear();
            open(0);
        }
        // Shown before: the user has put it where it is.
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
        QTimer::singleShot(0, this, &HelpWindow::fitPictures); // when the page has its new width
    }

private:
    // At every step of a drag; what has not changed is not told again (QTV_KeepLayout).
    void keepPlace()
    {
        const QList<int> parts = m_split->sizes();
        m_hasPlace = m_hasPlace || isVisible();
        if (isVisible() && parts.size() == 2)
            QTV_KeepLayout(LAYOUT, {x(), y(), width(), height(), parts[0], parts[1]});
    }

    void arrange()
    {
        m_back->setObjectName("back");
        m_back->setIcon(style()->standardIcon(QStyle::SP_ArrowBack));
        m_back->setToolTip("Back (Alt+Left)");
        m_back->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Left));
        m_forward->setObjectName("forward");
        m_forward->setIcon(style()->standardIcon(QStyle::SP_ArrowForward));
        m_forward->setToolTip("Forward (Alt+Right)");
        m_forward->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Right));
        auto *top = new QHBoxLayout;
        top->addWidget(m_back);
        top->addWidget(m_forward);
        top->addWidget(m_search, 1);
        top->addWidget(m_found);
        m_contents->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        m_split->addWidget(m_contents);
        m_split->addWidget(m_text);
        m_split->setStretchFactor(1, 1);
        auto *rows = new QVBoxLayout(this);
        rows->addLayout(top);
        rows->addWidget(m_split, 1);
    }

    // Shows a page from its top. What it refers to stands beside it.
    void open(int page)
    {
        const QString path = m_book[page].path;
        m_page = page;
        m_text->setSearchPaths({QFileInfo(path).absolutePath()});
        m_text->setMarkdown(QTV_ReadHelpPage(path));
        QTV_SpaceHelpPage(m_text);
        fitPictures();
        listContents();
        enableSteps();
    }

    void fitPictures()
    {
        QTV_FitHelpPictures(m_text);
    }

    // The same as a step that Back undoes.
    void openNext(int page)
    {
        m_before.append({m_page, m_text->verticalScrollBar()->value()});
        if (m_before.size() > PLACES_MAX)
            m_before.removeFirst();
        m_behind.clear();
        open(page);
    }

    void step(QVector<Place> *from, QVector<Place> *to)
    {
        if (from->isEmpty())
            return;
        // Back and forward are one walk: what one list gives goes to the other.
        to->append({m_page, m_text->verticalScrollBar()->value()});
        const Place place = from->takeLast();
        open(place.page);
        m_text->verticalScrollBar()->setValue(place.scroll);
    }

    void enableSteps()
    {
        m_back->setEnabled(!m_before.isEmpty());
        m_forward->setEnabled(!m_behind.isEmpty());
    }

    // "page.md#heading", either part alone too. Nothing but pages of the book is opened.
    void follow(const QUrl &link)
    {
        int page = m_page;
        if (!link.path().isEmpty()) {
            const QDir folder = QFileInfo(m_book[m_page].path).absoluteDir();
            const QString path = QDir::cleanPath(folder.absoluteFilePath(link.path()));
            page = -1;
            for (int i = 0; i < m_book.size(); i++)
                page = m_book[i].path == path ? i : page;
        }
        if (!link.scheme().isEmpty() || page < 0)
            return;
        openNext(page);
        for (QTextBlock block = m_text->document()->begin(); block.isValid(); block = block.next())
            if (block.blockFormat().headingLevel() > 0 &&
                QTV_HeadingAnchor(block.text()) == link.fragment())
                scrollTo(block.position());
    }

    // The book's pages, and below the one that is open its headings.
    void listContents()
    {
        const QSignalBlocker quiet(m_contents);
        m_contents->clear();
        QString section;
        for (int i = 0; i < m_book.size(); i++) {
            if (m_book[i].section != section) {
                section = m_book[i].section;
                auto *item = addLine(section, -1, 0);
                QFont font = item->font();
                font.setBold(true);
                item->setFont(font);
                item->setFlags(Qt::NoItemFlags);
                item->setForeground(palette().text());
            }
            if (m_book.size() > 1)
                addLine((section.isEmpty() ? "" : "   ") + m_book[i].title, i, 0);
            if (i == m_page)
                m_contents->setCurrentRow(m_contents->count() - 1);
            if (i == m_page && (i > 0 || m_book.size() == 1))
                listHeadings();
        }
        m_contents->scrollToItem(m_contents->currentItem());
    }

    void listHeadings()
    {
        const bool isOnly = m_book.size() == 1; // then its title is one of them
        const QTextDocument *document = m_text->document();
        for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
            const int level = block.blockFormat().headingLevel();
            if (level >= (isOnly ? 1 : 2) && level <= CONTENTS_DEPTH)
                addLine((isOnly ? "" : "        ") + block.text(), m_page, block.position());
        }
    }

    QListWidgetItem *addLine(const QString &text, int page, int position)
    {
        auto *item = new QListWidgetItem(text, m_contents);
        item->setData(ROLE_PAGE, page);
        item->setData(ROLE_POSITION, position);
        return item;
    }

    void turnTo(int row)
    {
        const QListWidgetItem *item = m_contents->item(row);
        if (!item || item->data(ROLE_PAGE).toInt() < 0)
            return;
        // Read before the page is turned: listing its contents takes all lines away.
        const int page = item->data(ROLE_PAGE).toInt();
        const int position = item->data(ROLE_POSITION).toInt();
        if (page != m_page)
            openNext(page);
        scrollTo(position);
    }

    void scrollTo(int position)
    {
        QTextCursor cursor(m_text->document());
        cursor.movePosition(QTextCursor::End); // so that the heading comes to the top
        m_text->setTextCursor(cursor);
        cursor.setPosition(position);
        m_text->setTextCursor(cursor);
    }

    // From where the last one was found, or behind it; then on the pages that follow; after the
    // last one from the beginning.
    void find(bool isNext)
    {
        const QString wanted = m_search->text();
        QTextCursor cursor = m_text->textCursor();
        // While one types, the word that grows is looked for where its beginning was found.
        const int start = isNext ? cursor.selectionEnd() : cursor.selectionStart();
        cursor.setPosition(start);
        m_text->setTextCursor(cursor);
        m_found->clear();
        if (wanted.isEmpty() || m_text->find(wanted))
            return;
        const int origin = m_page;
        for (int i = 1; i < m_book.size(); i++) {
            const int page = static_cast<int>((origin + i) % m_book.size());
            // Laying out a page takes a while: most are ruled out by their text.
            if (!QTV_MayHold(QTV_ReadHelpPage(m_book[page].path), wanted))
                continue;
            openNext(page);
            if (m_text->find(wanted))
                return;
            step(&m_before, &m_behind); // the words stood in a link or a mark
            m_behind.clear();
        }
        m_text->moveCursor(QTextCursor::Start); // the page it began on, from its top
        if (!m_text->find(wanted))
            m_found->setText("not found");
        enableSteps();
    }

    QSplitter *m_split = new QSplitter(this);
    QListWidget *m_contents = new QListWidget(this);
    QLineEdit *m_search = new QLineEdit(this);
    QLabel *m_found = new QLabel(this);
    QTextBrowser *m_text = new QTextBrowser(this);
    QToolButton *m_back = new QToolButton(this);
    QToolButton *m_forward = new QToolButton(this);
    QVector<QTV_HelpPage> m_book;
    QVector<Place> m_before, m_behind; // to go back and forward to
    QString m_first;                   // text of the first page
    int m_page = 0;                    // of the book
    bool m_hasPlace = false;
};

QPointer<HelpWindow> window; // goes with the main one

} // namespace

void QTV_ShowHelp(const std::string &path)
{
    // Kept when it is closed: the reader finds his page again.
    if (!window)
        window = new HelpWindow(QTV_MainWindow());
    window->show(QTV_ToQt(path));
}
