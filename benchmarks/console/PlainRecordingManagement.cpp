#include "PlainRecordingManagement.h"

#include "PrivateMembers.h"
#include "ServerVocabulary.h"
#include "companions/StatusMonitorPlugin.h"
#include "framework/FrameworkWrapperBase.h"

namespace {

QStandardItemModel &asModel(QObject *model)
{
    return *qobject_cast<QStandardItemModel *>(model);
}

} // namespace

bool PlainRecordingManagement::InitialPluginBase(QQmlContext *context, void *handle, FrameworkWrapperBase *framework)
{
    m_client = framework;
    return PluginRecordingManagement::InitialPluginBase(context, handle, framework);
}

PlainRules PlainRecordingManagement::rules()
{
    return PlainRules({
        .volumes = asModel(getVolumeModel()),
        .nasServers = asModel(getNASServerModel()),
        .recordingGroups = asModel(getRecordingGroupModel()),
        .tree = asModel(getRecordingGroupTreeModel()),
        .usageModels = PrivateMembers::storageUsageModels(*this),
        .groupVolumeModels = PrivateMembers::groupVolumeModels(*this),
        .cache = PrivateMembers::recordingGroups(*this),
        .parent = *this,
    });
}

void PlainRecordingManagement::CommandProcessor(QString command, QVariant data, void *, QString, QString, bool,
                                                const QString &)
{
    if (command == ServerCommand::getVolume) {
        rules().handleRetrieveVolume(data);
        emit getVolumeResponded(true);
    } else if (command == ServerCommand::retrieveRecordingGroupTreeModel) {
        clearRecordingGroupDataList(); // with it goes the index that queries made of the empty cache
        rules().appendRecordingGroupToTreeModel(data);
        rules().saveRecordingGroupData(data);
        emit retrieveRecordingGroupTreeModelFinish();
    }
}

void PlainRecordingManagement::EventProcessor(QString event, qint64, int, int, QVariant data, const QString &source)
{
    if (event != ServerEvent::VolumeChanged)
        return;
    QObject *const monitor = m_client->GetPluginObject(nullptr, StatusMonitorPlugin::pluginId);
    rules().handleVolumeChanged(source, data, monitor);
    emit volumeInfoChanged();
}
