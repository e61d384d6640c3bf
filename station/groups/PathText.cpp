#include "PathText.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"

namespace {
bool beginsOnTheNetwork(const QString &path)
{
    return path.size() > 2 && path.startsWith(QStringLiteral("//")) && path.at(2) != u'/';
}
} // namespace

QString keptPath(const QString &path)
{
    static const QString scheme = QStringLiteral("smb:");
    QString slashes = QString(path).replace(u'\\', u'/');
    if (slashes.startsWith(scheme, Qt::CaseInsensitive) && beginsOnTheNetwork(slashes.mid(scheme.size())))
        slashes.remove(0, scheme.size());
    const QString names = slashes.split(u'/', Qt::SkipEmptyParts).join(u'/');
    if (beginsOnTheNetwork(slashes))
        return QStringLiteral("//") + names;
    return slashes.startsWith(u'/') ? u'/' + names : names;
}

QString checkPathText(const QString &path, PathKind kind)
{
    const QStringList names = path.split(u'/', Qt::SkipEmptyParts);
    if (names.contains(QStringLiteral(".")) || names.contains(QStringLiteral("..")))
        return StationReturnCode::NameRefused;
    if (kind != PathKind::Local)
        return beginsOnTheNetwork(path) && names.size() > 1 ? ReturnCode::Success : StationReturnCode::PathTypeRefused;
    if (beginsOnTheNetwork(path))
        return StationReturnCode::PathTypeRefused;
    return path.startsWith(u'/') ? ReturnCode::Success : StationReturnCode::PathNotAbsolute;
}
