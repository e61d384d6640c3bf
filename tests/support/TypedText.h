#pragma once

#include <QString>

class QVariant;

/// A request or reply as text, types and all, so that one comparison holds the whole of it: {host: QString "nas",
/// count: int 3, list: QStringList ["a", "b"], mixed: QVariantList [bool true]}. An invalid value reads "invalid".
QString typedText(const QVariant &value);
