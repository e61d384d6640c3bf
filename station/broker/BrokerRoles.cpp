#include "BrokerRoles.h"

#include "mqtt/MqttTopics.h"

#include <QFile>

BrokerRoles BrokerRoles::parse(const QByteArray &bytes, const QString &file)
{
    BrokerRoles table;
    table.m_others = BrokerRole::Nobody;
    bool hasOthers = false;
    int number = 0;
    for (const QByteArray &rawLine : bytes.split('\n')) {
        ++number;
        const QString line = QString::fromUtf8(rawLine).trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        const auto refuse = [&](const QString &what) {
            throw RolesError(QStringLiteral("%1:%2: %3").arg(file, QString::number(number), what));
        };
        const qsizetype sign = line.lastIndexOf(u'=');
        const QString user = line.left(sign).trimmed();
        const QString word = line.mid(sign + 1).trimmed();
        if (sign < 0 || (user != QStringLiteral("*") && !MqttTopics::canBeUser(user)))
            refuse(QStringLiteral("expected USER = viewer or USER = operator"));
        if (word != QStringLiteral("viewer") && word != QStringLiteral("operator"))
            refuse(QStringLiteral("the role \"%1\" is not known: expected viewer or operator").arg(word));
        const BrokerRole role = word == QStringLiteral("viewer") ? BrokerRole::Viewer : BrokerRole::Operator;
        if (user == QStringLiteral("*") ? hasOthers : table.m_roles.contains(user))
            refuse(QStringLiteral("%1 stands here twice").arg(user));
        if (user == QStringLiteral("*")) {
            hasOthers = true;
            table.m_others = role;
        } else {
            table.m_roles.insert(user, role);
        }
    }
    return table;
}

BrokerRoles BrokerRoles::read(const QString &file)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        throw RolesError(QStringLiteral("%1: the table of roles cannot be read: %2").arg(file, source.errorString()));
    return parse(source.readAll(), file);
}

BrokerRole BrokerRoles::of(const QString &user) const
{
    return user.isEmpty() ? m_others : m_roles.value(user, m_others);
}
