#include "runtime/qt/help_book.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextTable>

namespace {

constexpr qint64 FILE_SIZE_MAX = 1 << 20;              // bytes of a page
constexpr int PAGES_MAX = 200;                         // more is no book of ours
constexpr int HEADING_SPACE = 12, PARAGRAPH_SPACE = 6; // pixels
constexpr int CELL_SPACE = 4, PICTURE_MARGIN = 30;     // pixels

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
    QString section; // a heading of the first level ends one
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

void QTV_SpaceHelpPage(QTextBrowser *text)
{
    QTextCursor cursor(text->document());
    for (QTextBlock block = text->document()->begin(); block.isValid(); block = block.next()) {
        QTextBlockFormat format = block.blockFormat();
        cursor.setPosition(block.position());
        if (QTextTable *table = cursor.currentTable()) {
            QTextTableFormat frame = table->format();
            frame.setCellPadding(CELL_SPACE);
            frame.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            frame.setBorderCollapse(true);
            frame.setBorder(1);
            frame.setBorderBrush(text->palette().mid());
            frame.setBottomMargin(PARAGRAPH_SPACE);
            table->setFormat(frame);
            block = table->lastCursorPosition().block(); // its cells are done with
            continue;
        }
        // The lines of a listing are paragraphs each; only the last one gets air behind it.
        const bool isListing = format.nonBreakableLines();
        if (isListing)
            format.setBackground(text->palette().alternateBase());
        format.setTopMargin(format.headingLevel() > 0 ? HEADING_SPACE : 0);
        format.setBottomMargin(
            isListing && block.next().blockFormat().nonBreakableLines() ? 0 : PARAGRAPH_SPACE);
        cursor.setBlockFormat(format);
    }
}

void QTV_FitHelpPictures(QTextBrowser *text)
{
    const int room = text->viewport()->width() - PICTURE_MARGIN;
    for (QTextBlock block = text->document()->begin(); block.isValid(); block = block.next())
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            QTextImageFormat picture = part.fragment().charFormat().toImageFormat();
            if (!picture.isValid())
                continue;
            // From the file each time: the one that was made smaller before would lose letters.
            const QVariant found = text->loadResource(QTextDocument::ImageResource, picture.name());
            QImage image = QImage::fromData(found.toByteArray());
            picture.setWidth(qMin(image.width(), room));
            if (image.width() > room) // smoothly: these are letters
                image = image.scaledToWidth(qRound(room * text->devicePixelRatioF()),
                                            Qt::SmoothTransformation);
            text->document()->addResource(QTextDocument::ImageResource, QUrl(picture.name()),
                                          image);
            QTextCursor cursor(text->document());
            cursor.setPosition(part.fragment().position());
            cursor.setPosition(cursor.position() + part.fragment().length(),
                               QTextCursor::KeepAnchor);
            cursor.setCharFormat(picture);
            break; // the block's parts are not what they were
        }
}
