#pragma once

#include <QRandomGenerator>
#include <QUuid>

#include <optional>

/// Makes the identifiers of rows: version 4 UUIDs, in form those of QUuid::createUuid().
///
/// A row's identifier has to be unique, not secret. So it comes from a generator of this object's own, which the system
/// seeds at the first identifier: the system's generator costs up to a microsecond for each identifier on some
/// processors. No two objects share a sequence. Used on one thread.
class RowIds
{
public:
    RowIds() = default;
    RowIds(const RowIds &) = delete;
    RowIds &operator=(const RowIds &) = delete;

    QUuid next();
    /// In braces, as QUuid::toString() writes it.
    QString nextText() { return next().toString(); }

private:
    std::optional<QRandomGenerator> m_generator; // a copy would repeat the sequence
};
