#pragma once

#include <QString>

/// Whether @p left comes before @p right in a list of names: the same in every locale, capitals beside small letters,
/// and numbers by their value (cam2 before cam10). Names that differ only in capitals or leading zeros have a fixed
/// order too.
bool nameLess(const QString &left, const QString &right);
