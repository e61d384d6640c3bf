#include "UsageNews.h"

#include <QAbstractItemModel>

#include <utility>

QList<UsageNews::Change> UsageNews::take(const QString &source, const QAbstractItemModel &usage)
{
    const QHash<int, QByteArray> roles = usage.roleNames();
    QMap<QString, QVariantMap> now;
    for (int row = 0; row < usage.rowCount(); ++row) {
        const auto value = [&](const char *role) { return usage.index(row, 0).data(roles.key(role)); };
        const auto known = [&](const char *role) { return value(role).toLongLong() < 0 ? QVariant() : value(role); };
        const QString id = value("idRole").toString();
        now.insert(id,
                   {{QStringLiteral("source"), source},
                    {QStringLiteral("group"), value("nameRole")},
                    {QStringLiteral("groupId"), id},
                    {QStringLiteral("recordedDays"), known("recordedDaysRole")},
                    {QStringLiteral("remainingDays"), known("remainDaysRole")},
                    {QStringLiteral("oneDayUsage"), known("oneDayUsageRole")},
                    {QStringLiteral("reservedTime"), value("reserveTimeRole")}});
    }
    const QMap<QString, QVariantMap> before = std::exchange(m_known[source], now);

    QList<Change> changes;
    for (auto group = now.cbegin(); group != now.cend(); ++group) {
        if (before.value(group.key()) != group.value())
            changes.append({false, group.value()});
    }
    for (auto group = before.cbegin(); group != before.cend(); ++group) {
        if (now.contains(group.key()))
            continue;
        Change gone{true, {}};
        for (const auto *key : {"source", "group", "groupId"})
            gone.values.insert(QLatin1String(key), group->value(QLatin1String(key)));
        changes.append(gone);
    }
    return changes;
}
