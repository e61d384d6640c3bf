#include "FolderNames.h"

#include <QSet>

namespace {
constexpr qsizetype longestName = 240; // bytes; file systems take 255, and a number may come behind it

bool isRefused(char byte)
{
    const auto code = static_cast<unsigned char>(byte);
    return code < 0x20 || code == 0x7f || QByteArrayView("/\\:*?\"<>|%").contains(byte);
}
} // namespace

QString folderName(const QString &name)
{
    const QByteArray bytes = name.toUtf8();
    if (bytes.contains('\0') || QString::fromUtf8(bytes) != name)
        return {};
    QByteArray folder;
    for (qsizetype place = 0; place < bytes.size(); ++place) {
        const char byte = bytes.at(place);
        const bool isFirst = place == 0;
        const bool isLast = place == bytes.size() - 1;
        if (isRefused(byte) || (byte == '.' && (isFirst || isLast)) || (byte == ' ' && isLast))
            folder += '%' + QByteArray(1, byte).toHex().toUpper();
        else
            folder += byte;
    }
    return folder.size() > longestName ? QString() : QString::fromUtf8(folder);
}

QString newGroupFolder(const QString &name, const QList<RecordingGroup> &groups)
{
    QSet<QString> taken;
    for (const RecordingGroup &group : groups)
        taken.insert(group.folder.toCaseFolded());
    const QString plain = folderName(name);
    QString folder = plain;
    for (int number = 2; taken.contains(folder.toCaseFolded()); ++number)
        folder = plain + u'-' + QString::number(number);
    return folder;
}
