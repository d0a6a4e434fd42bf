#include "runtime/qt/help_book.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

constexpr qint64 FILE_SIZE_MAX = 1 << 20; // bytes of a page
constexpr int PAGES_MAX = 200;

} // namespace

QString QTV_ReadHelpPage(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(FILE_SIZE_MAX))
                                          : "The help text cannot be read: " + path;
}

QVector<QTV_HelpPage> QTV_ReadHelpBook(const QString &firstPage)
{
    static const QRegularExpression heading("^(##?) +(.*)$");
    static const QRegularExpression entry("^- \\[([^\\]]+)\\]\\(([^)#:]+\\.md)\\)");
    QVector<QTV_HelpPage> pages{{"", "Contents", QFileInfo(firstPage).absoluteFilePath()}};
    const QDir folder = QFileInfo(firstPage).absoluteDir();
    QString section;
    const QStringList lines = QTV_ReadHelpPage(firstPage).split('\n');
    for (const QString &line : lines) {
        const QRegularExpressionMatch isHeading = heading.match(line);
        if (isHeading.hasMatch())
            section = isHeading.captured(1) == "##" ? isHeading.captured(2) : "";
        const QRegularExpressionMatch isEntry = entry.match(line);
        if (isEntry.hasMatch() && pages.size() < PAGES_MAX)
            pages.append({section, isEntry.captured(1),
                          QDir::cleanPath(folder.absoluteFilePath(isEntry.captured(2)))});
    }
    return pages;
}

QString QTV_HeadingAnchor(const QString &heading)
{
    QString anchor;
    for (const QChar c : heading.toLower()) {
        if (c.isLetterOrNumber() || c == '-' || c == '_')
            anchor += c;
        else if (c == ' ')
            anchor += '-';
    }
    return anchor;
}

bool QTV_MayHold(const QString &markdown, const QString &words)
{
    static const QRegularExpression marks("[`*\\\\]");
    return QString(markdown).remove(marks).simplified().contains(words.simplified(),
                                                                 Qt::CaseInsensitive);
}
