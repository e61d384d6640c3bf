#include "PrintableText.h"

namespace {
/// Characters that make a text look like another one.
bool disguises(QChar character)
{
    const char16_t code = character.unicode();
    return code == 0x061c || code == 0x200e || code == 0x200f || (code >= 0x2028 && code <= 0x202e)
        || (code >= 0x2066 && code <= 0x2069);
}
} // namespace

QString printable(const QString &text)
{
    constexpr int hexadecimal = 16;
    QString result;
    result.reserve(text.size());
    for (const QChar character : text) {
        if (character == u'\n')
            result += QStringLiteral("\\n");
        else if (character == u'\t')
            result += QStringLiteral("\\t");
        else if (character.category() == QChar::Other_Control)
            result += QStringLiteral("\\x%1").arg(character.unicode(), 2, hexadecimal, QLatin1Char('0'));
        else if (disguises(character))
            result += QStringLiteral("\\u%1").arg(character.unicode(), 4, hexadecimal, QLatin1Char('0'));
        else
            result += character;
    }
    return result;
}
