#pragma once

#include <QByteArray>
#include <QString>

/// The name of a file as text: different names are different texts, whatever their bytes are, and the same bytes come
/// back. What is no valid UTF-8 stands as characters from U+10FF80 on, one for each byte.
QString decodedName(const char *name);

/// The bytes of a name, or of a path of such names.
QByteArray encodedName(const QString &name);
