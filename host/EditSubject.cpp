#include "EditSubject.h"

#include "ServerVocabulary.h"
#include "StationVocabulary.h"

#include <QAbstractItemModel>

namespace {
struct NamedRows
{
    const char *modelGetter;
    const char *idRole;
};

constexpr NamedRows groups[] = {{"getRecordingGroupTreeModel", "recordingGroupIDRole"},
                                {"getRecordingGroupModel", "idRole"}};
constexpr NamedRows nasServers[] = {{"getNASServerModel", "idRole"}};

QString nameIn(const QAbstractItemModel &model, const char *idRole, const QString &id)
{
    if (model.rowCount() == 0)
        return {};
    const QHash<int, QByteArray> roles = model.roleNames();
    const QModelIndexList found =
        model.match(model.index(0, 0), roles.key(idRole), id, 1,
                    Qt::MatchFlags(Qt::MatchExactly | Qt::MatchCaseSensitive | Qt::MatchRecursive));
    return found.isEmpty() ? QString() : found.constFirst().data(roles.key("nameRole")).toString();
}

template<std::size_t count>
QString nameBehind(const QString &id, const NamedRows (&places)[count], QObject *plugin)
{
    for (const NamedRows &place : places) {
        QObject *model = nullptr;
        if (plugin)
            QMetaObject::invokeMethod(plugin, place.modelGetter, Qt::DirectConnection, Q_RETURN_ARG(QObject *, model));
        const auto *rows = qobject_cast<QAbstractItemModel *>(model);
        QString name = rows ? nameIn(*rows, place.idRole, id) : QString();
        if (!name.isEmpty())
            return name;
    }
    return id;
}
} // namespace

QString editSubject(const StationCommand &command, QObject *plugin)
{
    if (command.data.typeId() == QMetaType::QString)
        return command.data.toString();
    const QVariantMap data = command.data.toMap();
    if (data.contains(FieldKey::recordingGroupIDList)) {
        QStringList names;
        const QStringList ids = data.value(FieldKey::recordingGroupIDList).toStringList();
        for (const QString &id : ids)
            names.append(nameBehind(id, groups, plugin));
        names.removeDuplicates();
        return names.join(QStringLiteral(", "));
    }
    if (data.contains(FieldKey::recordingGroupID))
        return nameBehind(data.value(FieldKey::recordingGroupID).toString(), groups, plugin);
    for (const QString &key :
         {FieldKey::recordingGroupName, FieldKey::camName, FieldKey::host, StationKey::place, StationKey::subject}) {
        QString name = data.value(key).toString();
        if (!name.isEmpty())
            return name;
    }
    return nameBehind(data.value(StationKey::id).toString(), nasServers, plugin);
}
