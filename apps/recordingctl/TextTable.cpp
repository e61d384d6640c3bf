#include "TextTable.h"

#include <algorithm>

#include <wchar.h>

int displayWidth(const QString &text)
{
    int width = 0;
    const QList<uint> codePoints = text.toUcs4();
    for (const uint codePoint : codePoints) {
        const int columns = wcwidth(static_cast<wchar_t>(codePoint));
        width += columns < 0 ? 1 : columns; // -1: unknown in this locale
    }
    return width;
}

TextTable::TextTable(const QStringList &headers)
    : m_headers(headers)
    , m_rightAligned(headers.size(), false)
{
}

void TextTable::setRightAligned(int column)
{
    m_rightAligned[column] = true;
}

void TextTable::addRow(const QStringList &cells)
{
    QStringList row;
    std::transform(cells.begin(), cells.end(), std::back_inserter(row), printable);
    m_rows.append(row);
}

QString TextTable::toString() const
{
    QList<QStringList> lines = m_rows;
    lines.prepend(m_headers);
    QList<int> widths(m_headers.size(), 0);
    for (const QStringList &line : lines) {
        for (qsizetype column = 0; column < line.size(); ++column)
            widths[column] = std::max(widths[column], displayWidth(line[column]));
    }
    QString text;
    for (const QStringList &line : lines) {
        QString padded;
        for (qsizetype column = 0; column < line.size(); ++column) {
            const QString space(widths[column] - displayWidth(line[column]), u' ');
            padded += column == 0 ? QString() : QStringLiteral("  ");
            padded += m_rightAligned[column] ? space + line[column] : line[column] + space;
        }
        while (padded.endsWith(u' '))
            padded.chop(1);
        text += padded + u'\n';
    }
    return text;
}
