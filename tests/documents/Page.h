#pragma once

#include <QDir>
#include <QFile>
#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

/// A page of the documents as tests read it.
namespace Page {

/// A block between ``` and ```.
struct CodeBlock
{
    QString language;
    QString code; ///< its lines, each with its end
    QString note; ///< the text of an HTML comment right above it
    int line = 0; ///< of the opening ```, from 1
};

/// A table: the cells of its head and of its rows, without the spaces around them.
struct Table
{
    QStringList head;
    QList<QStringList> rows;
};

/// The text of @p file, a path below the repository's folder; empty where there is none.
inline QString text(const QString &file)
{
    QFile source(QDir(QStringLiteral(SOURCE_DIR)).filePath(file));
    return source.open(QIODevice::ReadOnly) ? QString::fromUtf8(source.readAll()) : QString();
}

/// Every page of the documents, as paths below the repository's folder.
inline QStringList files()
{
    QStringList pages;
    for (const QString &folder : {QString(), QStringLiteral("docs/"), QStringLiteral("docs/decisions/")}) {
        const QDir found(QDir(QStringLiteral(SOURCE_DIR)).filePath(folder));
        for (const QString &page : found.entryList({QStringLiteral("*.md")}, QDir::Files))
            pages.append(folder + page);
    }
    return pages;
}

inline QList<CodeBlock> codeBlocks(const QString &page)
{
    QList<CodeBlock> blocks;
    QString note;
    bool isInside = false;
    bool isNoteOpen = false;
    const QStringList lines = page.split(u'\n');
    for (int number = 0; number < lines.size(); ++number) {
        const QString &line = lines[number];
        if (isInside) {
            if (line.startsWith(QStringLiteral("```")))
                isInside = false;
            else
                blocks.last().code += line + u'\n';
        } else if (isNoteOpen || line.startsWith(QStringLiteral("<!--"))) {
            note += line + u'\n';
            isNoteOpen = !line.contains(QStringLiteral("-->"));
        } else if (line.startsWith(QStringLiteral("```"))) {
            note.remove(QStringLiteral("<!--")).remove(QStringLiteral("-->"));
            blocks.append({line.mid(3).trimmed(), QString(), note.trimmed(), number + 1});
            note.clear();
            isInside = true;
        } else {
            note.clear();
        }
    }
    return blocks;
}

inline QList<Table> tables(const QString &page)
{
    const auto cells = [](const QString &line) {
        QStringList found = line.split(u'|').mid(1);
        found.removeLast();
        for (QString &cell : found)
            cell = cell.trimmed();
        return found;
    };
    QList<Table> found;
    bool isInside = false;
    for (const QString &line : page.split(u'\n')) {
        const bool isRow = line.startsWith(u'|');
        if (isRow && !isInside)
            found.append({cells(line), {}});
        else if (isRow && !line.startsWith(QStringLiteral("|---")))
            found.last().rows.append(cells(line));
        isInside = isRow;
    }
    return found;
}

/// The rows of all tables of @p page whose first column has the title @p title.
inline QList<QStringList> rowsUnder(const QString &page, const QString &title)
{
    QList<QStringList> rows;
    for (const Table &table : tables(page)) {
        if (table.head.value(0) == title)
            rows.append(table.rows);
    }
    return rows;
}

} // namespace Page
