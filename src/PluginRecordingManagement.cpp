#include "PluginRecordingManagement.h"

#include "ItemRoles.h"
#include "NoThrow.h"
#include "RecordingGroupTreeModel.h"
#include "RowItems.h"
#include "ServerVocabulary.h"
#include "VolumeReport.h"
#include "framework/FrameworkWrapperBase.h"
#include "trace/TraceLog.h"
#include "trace/TraceScope.h"

#include <QStandardItemModel>
#include <QtQml>

#include <algorithm>
#include <charconv>
#include <exception>
#include <iterator>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

void traceException(const char *function) noexcept
{
    try {
        throw;
    } catch (const std::bad_alloc &) {
        TRACE_ERROR("%s, out of memory", function);
    } catch (const std::exception &exception) {
        TRACE_ERROR("%s, exception: %s", function, exception.what());
    } catch (...) {
        TRACE_ERROR("%s, unknown exception", function);
    }
}

struct PluginRecordingManagement::ListModel
{
    QStandardItemModel *PluginRecordingManagement::*member;
    const QHash<int, QByteArray> &(*roleNames)();
    void (*reportFailure)(); // under a fixed line, for filters of the trace library
};

const PluginRecordingManagement::ListModel PluginRecordingManagement::listModels[] = {
    {&PluginRecordingManagement::m_volumeModel, volumeRoleNames,
     [] { TRACE_ERROR_AT(23, "Create volume model failed"); }},
    {&PluginRecordingManagement::m_recordingGroupModel, recordingGroupRoleNames,
     [] { TRACE_ERROR_AT(31, "Create recording group model failed"); }},
    {&PluginRecordingManagement::m_nasServerModel, nasServerRoleNames,
     [] { TRACE_ERROR_AT(39, "Create NAS server model failed"); }},
    {&PluginRecordingManagement::m_nasDirModel, directoryRoleNames,
     [] { TRACE_ERROR_AT(47, "Create NAS server dir model failed"); }},
    {&PluginRecordingManagement::m_serverDirModel, directoryRoleNames,
     [] { TRACE_ERROR_AT(55, "Create server dir model failed"); }},
};

struct PluginRecordingManagement::Reply
{
    const QVariant &data;
    void *context;
    const QString &returnCode;
    bool finish;

    bool ok() const { return returnCode == ReturnCode::Success; }
};

struct PluginRecordingManagement::ReplyRoute
{
    const QString &command;
    void (*handle)(PluginRecordingManagement &plugin, const Reply &reply);
};

// The NAS handlers take the return code first, the others the data.
const PluginRecordingManagement::ReplyRoute PluginRecordingManagement::replyRoutes[] = {
    {ServerCommand::GetNasServers,
     [](auto &plugin, const Reply &reply) { plugin.handleGetNASServers(reply.returnCode, reply.data); }},
    {ServerCommand::addNASPathsToVolume,
     [](auto &plugin, const Reply &reply) { plugin.handleAddNASPathsToVolume(reply.returnCode, reply.data); }},
    {ServerCommand::AddNasServer,
     [](auto &plugin, const Reply &reply) { plugin.handleAddNASServer(reply.returnCode, reply.data, reply.context); }},
    {ServerCommand::UpdateNASServer,
     [](auto &plugin, const Reply &reply) { plugin.handleUpdateNASServer(reply.returnCode, reply.context); }},
    {ServerCommand::RemoveNASServer,
     [](auto &plugin, const Reply &reply) { plugin.handleRemoveNASServer(reply.returnCode, reply.context); }},
    {ServerCommand::GetNasDir,
     [](auto &plugin, const Reply &reply) {
         plugin.handleGetNASServerDir(reply.returnCode, reply.data, reply.context);
     }},
    {ServerCommand::GetNasCapacity,
     [](auto &plugin, const Reply &reply) {
         plugin.handleGetNASServerCapacity(reply.returnCode, reply.data, reply.context);
     }},
    {ServerCommand::getVolume,
     [](auto &plugin, const Reply &reply) { plugin.handleRetrieveVolume(reply.data, reply.returnCode); }},
    {ServerCommand::getRecordingGroup,
     [](auto &plugin, const Reply &reply) {
         plugin.handleGetRecordingGroup(reply.data, reply.returnCode, reply.context);
     }},
    {ServerCommand::addPathToRecordingGroup,
     [](auto &plugin, const Reply &reply) { emit plugin.addPathToRecordingGroupResponded(reply.ok()); }},
    {ServerCommand::removePathFromRecordingGroup,
     [](auto &plugin, const Reply &reply) { emit plugin.removePathFromRecordingGroupResp(reply.ok(), reply.finish); }},
    {ServerCommand::addRecordingGroup,
     [](auto &plugin, const Reply &reply) { plugin.handleAddRecordingGroup(reply.returnCode, reply.finish); }},
    {ServerCommand::createDirectory,
     [](auto &plugin, const Reply &reply) { emit plugin.createDirectoryResponded(reply.ok()); }},
    {ServerCommand::removeRecordingGroup,
     [](auto &plugin, const Reply &reply) { emit plugin.removeRecordingGroupResp(reply.ok(), reply.finish); }},
    {ServerCommand::addRecordingGroupWithCompleteInfo,
     [](auto &plugin, const Reply &reply) {
         plugin.handleAddRecordingGroupWithCompleteInfo(reply.data, reply.returnCode);
     }},
    {ServerCommand::updateRecordingGroup,
     [](auto &plugin, const Reply &reply) { plugin.handleUpdateRecordingGroup(reply.data, reply.returnCode); }},
    {ServerCommand::retrieveRecordingGroupTreeModel,
     [](auto &plugin, const Reply &reply) {
         plugin.handleRetrieveRecordingGroupTreeModel(reply.data, reply.returnCode);
     }},
    {ServerCommand::getServerDir,
     [](auto &plugin, const Reply &reply) { plugin.handleGetServerDir(reply.data, reply.returnCode); }},
};

PluginRecordingManagement::~PluginRecordingManagement()
{
    const TraceScope scope(__FILE__, "PluginRecordingManagement::~PluginRecordingManagement", __LINE__);
    std::exchange(m_storageUsageModels, {});
    std::exchange(m_volumeReports, {});
}

bool PluginRecordingManagement::InitialPluginBase(QQmlContext *context, void *handle, FrameworkWrapperBase *framework)
{
    m_pluginName = QStringLiteral("RecordingManagementPlugin");
    m_pluginId = QStringLiteral("8F33495A224D49ABB8F9E875984A1443");
    m_handle = handle;
    m_framework = framework;
    return Init(context);
}

bool PluginRecordingManagement::Init(QQmlContext *)
{
    constexpr auto function = "PluginRecordingManagement::Init";
    const TraceScope scope(__FILE__, function, __LINE__);
    for (const ListModel &entry : listModels) {
        this->*entry.member = newListModel(entry.roleNames(), this);
        if (!(this->*entry.member)) {
            entry.reportFailure();
            return false;
        }
    }
    return noThrow(function, [this] {
        m_treeModel = QSharedPointer<RecordingGroupTreeModel>::create(this);
        qmlRegisterType<PluginRecordingManagement>("com.meridon.pluginrecordingmanagement", 1, 0,
                                                   "PluginRecordingManagement");
    });
}

void PluginRecordingManagement::PluginServerConnected()
{
    std::exchange(m_storageUsageModels, {}); // QML may call again from a model's end, and finds the map empty
    getNASServers(QString());
    getRecordingGroup();
    reloadStorageUsageInfo(QString());
}

void PluginRecordingManagement::EventProcessor(QString event, qint64, int, int, QVariant data, const QString &source)
{
    constexpr auto function = "PluginRecordingManagement::EventProcessor";
    const TraceScope scope(__FILE__, function, __LINE__);
    if (event != ServerEvent::VolumeChanged)
        return;
    noThrow(function, [&] { handleVolumeChanged(data, source); });
    noThrow(function, [this] { emit volumeInfoChanged(); });
}

void PluginRecordingManagement::EventProcessorEx(QString, ConfigBase *, qint64, int, int, QVariant, const QString &)
{
    const TraceScope scope(__FILE__, "PluginRecordingManagement::EventProcessorEx", __LINE__);
}

void PluginRecordingManagement::CommandProcessor(QString command, QVariant data, void *context, QString returnCode,
                                                 QString, bool finish, const QString &)
{
    constexpr auto function = "PluginRecordingManagement::CommandProcessor";
    const TraceScope scope(__FILE__, function, __LINE__);
    const auto route = std::find_if(std::begin(replyRoutes), std::end(replyRoutes),
                                    [&command](const ReplyRoute &entry) { return entry.command == command; });
    if (route != std::end(replyRoutes))
        noThrow(function, [&] { route->handle(*this, {data, context, returnCode, finish}); });
}

void PluginRecordingManagement::CommandProcessorEx(QString, ConfigBase *, QVariant, void *, QString, QString, bool,
                                                   const QString &)
{
    const TraceScope scope(__FILE__, "PluginRecordingManagement::CommandProcessorEx", __LINE__);
}

bool PluginRecordingManagement::recordingGroupRetrieved() const
{
    return m_recordingGroupRetrieved != 0;
}

QObject *PluginRecordingManagement::getVolumeModel()
{
    return m_volumeModel;
}

QObject *PluginRecordingManagement::getRecordingGroupModel()
{
    return m_recordingGroupModel;
}

QObject *PluginRecordingManagement::getNASServerModel()
{
    return m_nasServerModel;
}

QObject *PluginRecordingManagement::getNASServerDirModel()
{
    return m_nasDirModel;
}

QObject *PluginRecordingManagement::getServerDirModel()
{
    return m_serverDirModel;
}

QObject *PluginRecordingManagement::getStorageUsageModel(const QString &relayPath)
{
    return noThrow("PluginRecordingManagement::getStorageUsageModel", static_cast<QObject *>(nullptr),
                   [&] { return storageUsageModel(relayPath).data(); });
}

QObject *PluginRecordingManagement::getGroupVolumeModel(const QString &relayPath, const QString &groupId)
{
    return noThrow("PluginRecordingManagement::getGroupVolumeModel", static_cast<QObject *>(nullptr),
                   [&]() -> QObject * {
                       const auto report = m_volumeReports.value(relayPath);
                       return report ? report->model(groupId, m_rowIds, this) : nullptr;
                   });
}

QObject *PluginRecordingManagement::getRecordingGroupTreeModel() const
{
    return m_treeModel.data();
}

QSharedPointer<QStandardItemModel> PluginRecordingManagement::storageUsageModel(const QString &source)
{
    QSharedPointer<QStandardItemModel> model = m_storageUsageModels.value(source);
    if (model)
        return model;
    std::unique_ptr<QStandardItemModel> made(newListModel(recordingGroupRoleNames(), this));
    model.reset(made.get()); // throws without deleting what it is given
    made.release();
    if (model)
        m_storageUsageModels.insert(source, model);
    return model;
}

void PluginRecordingManagement::CreateStationTreeModel(const QVariantMap &station)
{
    if (!m_treeModel)
        return;
    clearRows(m_treeModel.data());
    RowBatch rows;
    const bool made = rows.add([&] {
        return treeStationRows().row(station.value(QStringLiteral("name")).toString(),
                                     station.value(QStringLiteral("ip")).toString(),
                                     station.value(FieldKey::relayPath).toString(),
                                     station.value(QStringLiteral("type")).toString(), m_rowIds.nextText());
    });
    if (rows.append(m_treeModel.data()) > 0 || !made)
        throw std::bad_alloc();
}

QString PluginRecordingManagement::convertVolumeCapacity(qint64 capacity) const
{
    constexpr std::string_view units[] = {" KB", " MB", " GB", " TB"};
    constexpr int bitsPerUnit = 10;
    if (capacity < 0)
        return QString::number(static_cast<double>(capacity), 'f', 2) + QStringLiteral(" KB");

    // The digits of QString::number(double, 'f', 2), in integers: a list of groups has two such texts for each volume.
    const auto size = static_cast<quint64>(static_cast<double>(capacity));
    std::size_t unit = 0;
    while (unit + 1 < std::size(units) && size >> (bitsPerUnit * (unit + 1)) > 0)
        ++unit;
    const std::size_t bits = bitsPerUnit * unit;
    const quint64 one = quint64(1) << bits;
    const quint64 hundredths = ((size & (one - 1)) * 100 + one / 2) >> bits;
    char text[32];
    char *end = std::to_chars(std::begin(text), std::end(text), (size >> bits) + hundredths / 100).ptr;
    *end++ = '.';
    *end++ = static_cast<char>('0' + hundredths / 10 % 10);
    *end++ = static_cast<char>('0' + hundredths % 10);
    end = std::copy(units[unit].begin(), units[unit].end(), end);
    return QString::fromLatin1(text, end - text);
}

QString PluginRecordingManagement::toSlashPath(const QString &path) const
{
    return QString(path).replace(u'\\', u'/');
}
