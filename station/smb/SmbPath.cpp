#include "SmbPath.h"

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

namespace {
constexpr quint16 usualPort = 445;

/// Whether @p name can be the name of a share or a folder.
bool isName(const QString &name)
{
    return std::none_of(name.begin(), name.end(), [](QChar character) {
        return character < u' ' || QStringView(u":*?\"<>|").contains(character);
    });
}

QString portText(quint16 port)
{
    return port == 0 ? QString() : u':' + QString::number(port);
}
} // namespace

std::optional<SmbPath> SmbPath::parseHost(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("\\A([A-Za-z0-9_](?:[A-Za-z0-9._-]*[A-Za-z0-9_])?)(?::([0-9]{1,5}))?\\z"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return {};
    SmbPath path;
    path.host = match.captured(1);
    if (match.hasCaptured(2)) {
        bool isPort = false;
        const quint16 port = match.captured(2).toUShort(&isPort);
        if (!isPort || port == 0)
            return {};
        path.port = port == usualPort ? 0 : port;
    }
    return path;
}

std::optional<SmbPath> SmbPath::parse(const QString &text)
{
    QString slashed = QString(text).replace(u'\\', u'/');
    if (slashed.startsWith(QStringLiteral("smb:"), Qt::CaseInsensitive))
        slashed.remove(0, 4);
    if (!slashed.startsWith(QStringLiteral("//")))
        return {};
    QStringList names = slashed.mid(2).split(u'/');
    std::optional<SmbPath> path = parseHost(names.takeFirst());
    if (!path)
        return {};
    QStringList way;
    for (const QString &name : std::as_const(names)) {
        if (!isName(name))
            return {};
        if (name == QStringLiteral("..")) {
            if (!way.isEmpty())
                way.removeLast();
        } else if (!name.isEmpty() && name != QStringLiteral(".")) {
            way.append(name);
        }
    }
    if (!way.isEmpty())
        path->share = way.takeFirst();
    path->folders = way;
    return path;
}

QString SmbPath::text() const
{
    QString text = QStringLiteral("//") + host + portText(port);
    if (!share.isEmpty())
        text += u'/' + share;
    for (const QString &folder : folders)
        text += u'/' + folder;
    return text;
}

QByteArray SmbPath::url() const
{
    QByteArray url = "smb://" + (host + portText(port)).toLatin1() + '/';
    if (!share.isEmpty())
        url += QUrl::toPercentEncoding(share);
    for (const QString &folder : folders)
        url += '/' + QUrl::toPercentEncoding(folder);
    return url;
}

QByteArray SmbPath::urlOf(const QString &name) const
{
    return url() + '/' + QUrl::toPercentEncoding(name);
}

SmbPath SmbPath::server() const
{
    SmbPath server;
    server.host = host;
    server.port = port;
    return server;
}

QString SmbPath::hostKey() const
{
    return QStringLiteral("%1:%2").arg(host.toLower()).arg(port == 0 ? usualPort : port);
}

QString SmbPath::shareKey() const
{
    SmbPath place = *this;
    place.folders.clear();
    return place.text().toCaseFolded();
}

bool SmbPath::isOnHostOf(const SmbPath &other) const
{
    return hostKey() == other.hostKey();
}
