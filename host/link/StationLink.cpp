#include "StationLink.h"

#include "StationPresence.h"

#include <QStringList>

std::unique_ptr<StationLink> StationLink::open(const QString &url, const QList<Kind> &kinds, const Client &client,
                                               QString *error)
{
    const qsizetype colon = url.indexOf(u':');
    const QString scheme = colon < 0 ? QString() : url.left(colon);
    QStringList forms;
    for (const Kind &kind : kinds) {
        forms.append(kind.form);
        if (kind.scheme == scheme)
            return kind.open(url.mid(colon + 1), client, error);
    }
    *error = scheme.isEmpty()
        ? QStringLiteral("\"%1\" names no station: expected %2.").arg(url, forms.join(QStringLiteral(" or ")))
        : QStringLiteral("\"%1\" names a station in an unknown way, \"%2:\": expected %3.")
              .arg(url, scheme, forms.join(QStringLiteral(" or ")));
    return {};
}

QList<StationPresence> StationLink::stations() const
{
    return {{.relayPath = directStation(), .name = {}, .address = {}, .version = {}, .state = state()}};
}

StationPresence StationLink::presence(const QString &relayPath) const
{
    const QString path = relayPath.isEmpty() ? directStation() : relayPath;
    const QList<StationPresence> all = stations();
    for (const StationPresence &one : all) {
        if (one.relayPath == path)
            return one;
    }
    return {};
}

bool StationLink::setDirectStation(const QString &)
{
    return false;
}
