// The help's pages as a book: what its first page lists, in that order, and how a page is set in
// the window. Plain data, read anew at each opening; only the help window asks.
#ifndef RUNTIME_QT_HELP_BOOK_H
#define RUNTIME_QT_HELP_BOOK_H

#include <QString>
#include <QVector>

class QTextBrowser;

struct QTV_HelpPage {
    QString section; // heading of the list it stands in; "" = none
    QString title;
    QString path;
};

// The first page itself, then every page of a list in it: a line "- [Title](page.md)" under a
// heading "## Section". A file that lists no pages is a book of one.
QVector<QTV_HelpPage> QTV_ReadHelpBook(const QString &firstPage);
// A page's Markdown; a sentence about it when it cannot be read.
QString QTV_ReadHelpPage(const QString &path);
// What a link to a heading calls it: lower case, blanks as "-", other signs left out.
QString QTV_HeadingAnchor(const QString &heading);
// Whether a page may hold the words: a quick look at its text, before it is laid out.
bool QTV_MayHold(const QString &markdown, const QString &words);
// What Qt's reader of Markdown leaves out of the page that has just been set: air between
// paragraphs, lines of tables, a ground for listings.
void QTV_SpaceHelpPage(QTextBrowser *text);
// Makes pictures of whole windows no wider than the page; again whenever that has changed.
void QTV_FitHelpPictures(QTextBrowser *text);

#endif
