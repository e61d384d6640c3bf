#pragma once

#include "PrintableText.h"

#include <QList>
#include <QString>
#include <QStringList>

/// How many columns of a terminal @p text takes.
int displayWidth(const QString &text);

/// Rows of text under headers, in aligned columns.
class TextTable
{
public:
    explicit TextTable(const QStringList &headers);

    /// Numbers stand flush right, with their header.
    void setRightAligned(int column);
    /// @param cells one for each header
    void addRow(const QStringList &cells);

    /// The headers and the rows, each on a line of its own; columns are two spaces apart, no line ends in a space.
    QString toString() const;

private:
    QStringList m_headers;
    QList<QStringList> m_rows;
    QList<bool> m_rightAligned;
};
