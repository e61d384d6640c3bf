#include "FileName.h"

#include <QList>

#include <algorithm>

namespace {
constexpr char32_t byteBase = 0x10ff00;
constexpr char32_t firstByte = byteBase + 0x80;

void appendByte(QString &text, char byte)
{
    text += QChar::fromUcs4(byteBase + static_cast<unsigned char>(byte));
}
} // namespace

QString decodedName(const char *name)
{
    const QByteArray bytes(name);
    QString text = QString::fromUtf8(bytes);
    const bool isPlain = !text.contains(QChar(QChar::highSurrogate(firstByte))); // mostly: no more to be looked at
    if (isPlain && text.toUtf8() == bytes)
        return text;
    text.clear();
    for (qsizetype i = 0; i < bytes.size();) {
        constexpr qsizetype longest = 4;
        qsizetype length = 1;
        // The shortest piece that is valid is one character.
        while (length <= std::min(longest, bytes.size() - i)
               && QString::fromUtf8(bytes.mid(i, length)).toUtf8() != bytes.mid(i, length))
            ++length;
        const bool isValid = length <= std::min(longest, bytes.size() - i);
        const QString character = isValid ? QString::fromUtf8(bytes.mid(i, length)) : QString();
        if (isValid && character.toUcs4().value(0) < firstByte) {
            text += character;
            i += length;
        } else {
            appendByte(text, bytes.at(i++)); // also of those characters that stand for bytes here
        }
    }
    return text;
}

QByteArray encodedName(const QString &name)
{
    if (!name.contains(QChar(QChar::highSurrogate(firstByte))))
        return name.toUtf8();
    QByteArray bytes;
    const QList<uint> characters = name.toUcs4();
    for (const char32_t character : characters) {
        if (character >= firstByte)
            bytes += static_cast<char>(character - byteBase);
        else
            bytes += QString::fromUcs4(&character, 1).toUtf8();
    }
    return bytes;
}
