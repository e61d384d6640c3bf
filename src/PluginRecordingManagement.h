#pragma once

#include "RecordingGroupData.h"
#include "RecordingGroupIndex.h"
#include "RowIds.h"
#include "framework/PluginBase.h"

#include <QMap>
#include <QSharedPointer>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

class QStandardItemModel;
class RecordingGroupTreeModel;
class RowBatch;
class VolumeReport;
struct AddNASServerContext;

/// The one object through which QML decides where and how a recording server (a station) stores video.
///
/// Every operation that sends a command returns whether the framework accepted it; the outcome arrives later as a
/// signal. Queries answer at once. The object owns every model that it hands out and is its parent, so QML never takes
/// ownership. A relay path names the station that a request is for; the empty one is the directly connected station.
/// Everything runs on the object's thread, the UI thread. Before InitialPluginBase() no command can be sent and the
/// models are null.
///
/// Failures are written to the trace log. No exception leaves the object: a request or query without memory answers as
/// if it were refused, a reply leaves out the rows that memory is missing for, and what a slot throws ends there.
///
/// Sizes, usage and reserved space are numbers in the station's units, handed on as they come. The station of this
/// repository sends sizes in KB, the usage of a day in bytes and reserved space in MB, in steps of 1024.
///
/// docs/qml-api.md tells all of this to those who write pages; a test holds that page against this class.
class PluginRecordingManagement : public PluginBase
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.MERIDON.UIFramework.PluginInterface" FILE "PluginRecordingManagement.json")
    Q_INTERFACES(PluginBase)
    /// 1 while the recording-group model holds the groups of the newest request, else 0. Declared int: QML pages read a
    /// number.
    Q_PROPERTY(int recordingGroupRetrieved READ recordingGroupRetrieved NOTIFY recordingGroupRetrievedChanged)

public:
    /// Kind of a recording path, sent as an int.
    enum RecPathType : int {
        Local = 0, ///< on a disk of the station
        NetHost = 1, ///< on a network host
        NetDomain = 2, ///< in a network domain
    };
    Q_ENUM(RecPathType)

    /// Outcome of a NAS command.
    enum NASServerErrorCode : int {
        NonError = 0,
        LogonFailed = 1,
        ServerExist = 2,
        GetDirFailed = 3,
        GetCapacityFailed = 4,
        Unknown = 5,
    };
    Q_ENUM(NASServerErrorCode)

    /// Which of the entries "." and ".." a NAS folder listing hides; a set of bits.
    enum NASDirFilter : int {
        NoDot = 1,
        NoDotDot = 2,
        NoDotAndDotDot = 3,
    };
    Q_ENUM(NASDirFilter)

    PluginRecordingManagement() = default;
    ~PluginRecordingManagement() override;

    bool InitialPluginBase(QQmlContext *context, void *handle, FrameworkWrapperBase *framework) override;
    /// Routes "VolumeChanged" to the usage figures and the status monitor, then emits volumeInfoChanged().
    void EventProcessor(QString event, qint64, int, int, QVariant data, const QString &source) override;
    /// Handles no event.
    void EventProcessorEx(QString event, ConfigBase *config, qint64, int, int, QVariant data,
                          const QString &source) override;
    /// Routes a reply to its handler by the exact name of the command; unknown names are dropped.
    void CommandProcessor(QString command, QVariant data, void *context, QString returnCode, QString, bool finish,
                          const QString &) override;
    /// Handles no reply.
    void CommandProcessorEx(QString command, ConfigBase *config, QVariant data, void *context, QString returnCode,
                            QString, bool finish, const QString &) override;
    /// Creates the models and registers the QML type; false when a model could not be allocated.
    bool Init(QQmlContext *context) override;
    /// Releases the storage-usage models and asks for the NAS servers, the recording groups and the usage again.
    void PluginServerConnected() override;

    /// The property of that name.
    bool recordingGroupRetrieved() const;

    // Models. ---------------------------------------------------------------------------------------------------

    /// The volumes of the station that was asked last (roles: VolumeRole), then the NAS paths added since, which the
    /// next reply to getVolume() drops. Ids of rows are new with every reply. Null before Init().
    Q_INVOKABLE QObject *getVolumeModel();
    /// The recording groups of the directly connected station (roles: RecordingGroupRole). Days, usage and reserved
    /// time are 0 in every row, which says nothing: getStorageUsageModel() has them. Null before Init().
    Q_INVOKABLE QObject *getRecordingGroupModel();
    /// The NAS servers (roles: NasServerRole). Passwords are what the station sent, tokens from the one of this
    /// repository; after an add or update the row has what was sent, until getNASServers() is answered. Null before
    /// Init().
    Q_INVOKABLE QObject *getNASServerModel();
    /// The folders of the NAS directory listed last (roles: DirectoryRole). Null before Init().
    Q_INVOKABLE QObject *getNASServerDirModel();
    /// The folders of the station's directory listed last (roles: DirectoryRole). Null before Init().
    Q_INVOKABLE QObject *getServerDirModel();
    /// The usage of each recording group of one station (roles: RecordingGroupRole), as its last event reported it; -1
    /// days or usage mean unknown, and the lists of paths are empty. Made when it is first asked for. A new connection
    /// releases it: ask again then. Null when memory ran out.
    Q_INVOKABLE QObject *getStorageUsageModel(const QString &relayPath);
    /// The storage paths of one recording group with their sizes (roles: VolumeRole; the root path is the recording
    /// path), as the station's last event reported them. Made when it is first asked for, and the same until the next
    /// event of the station ends it: ask again after volumeInfoChanged(). Null where no event named the group, or
    /// memory ran out.
    Q_INVOKABLE QObject *getGroupVolumeModel(const QString &relayPath, const QString &groupId);

    // Volumes, recording groups. ----------------------------------------------------------------------------------

    /// Asks the station for its volumes. Answered by getVolumeResponded().
    Q_INVOKABLE bool getVolume(const QString &relayPath = "");
    /// Asks for the recording groups. Returns the id of the request, or an empty string when it could not be sent;
    /// recordingGroupRetrieved is 0 from here on. Answered by getRecordingGroupResponded() with that id; a refusal is
    /// not signalled.
    Q_INVOKABLE QString getRecordingGroup();
    /// Makes the folder @p path on the directly connected station. Answered by createDirectoryResponded().
    Q_INVOKABLE bool createDirectory(const QString &path);
    /// Adds a recording group with one path. @p reserveSpace, in the station's unit (MB from the station of this
    /// repository), must be a multiple of 1024 (negative ones pass); name and path must not be empty. Answered by
    /// addRecordingGroupResponded().
    Q_INVOKABLE bool addRecordingGroup(const QString &groupName, const QString &path, RecPathType recPathType,
                                       qlonglong reserveSpace = 2048);
    /// Removes groups; the list must not be empty. Answered by removeRecordingGroupResp(), once for each part.
    Q_INVOKABLE bool removeRecordingGroup(const QStringList &groupIDList);
    /// Adds a path to a group; the rules of addRecordingGroup() hold. Answered by addPathToRecordingGroupResponded().
    Q_INVOKABLE bool addPathToRecordingGroup(const QString &groupID, const QString &path, RecPathType recPathType,
                                             qlonglong reserveSpace = 2048);
    /// Removes path i from group i for every i; both lists are of one length and not empty.
    /// Answered by removePathFromRecordingGroupResp(), once for each part.
    Q_INVOKABLE bool removePathFromRecordingGroup(const QStringList &groupIDList, const QStringList &pathList);
    /// Adds NAS paths to the volumes. An empty list sends nothing: it emits addNASPathsToVolumeResp(true) at once and
    /// returns false. Answered by addNASPathsToVolumeResp().
    Q_INVOKABLE bool addNASPathsToVolume(const QStringList &pathList);
    /// Changes a group in up to six ways at once; nothing is checked here, all lists go to the station as they are.
    /// What the station of this repository reads, as one edit that is done or refused as a whole:
    ///
    /// @param groupID the group's id
    /// @param addCameraList members: maps as in getRecordingGroupMemberList()
    /// @param removeCameraList maps with "camName" (string) and "streamIndex" (int; left out: every stream)
    /// @param addPathList paths: maps as in addRecordingGroupWithCompleteInfo(); "isRecoveryMode" may be left out
    /// @param removePathList strings
    /// @param updatePathList maps with "path" (string) and what is to change of "pathType", "reserveSpace" and
    ///        "isRecoveryMode"
    /// @param setGrpInfo what is to change of "recordingGroupName" (string), "recordingGroupReservedTimeEnabled"
    /// (bool),
    ///        "recordingGroupReservedTime" (int, minutes) and "recordingGroupNodeIdList" (strings)
    ///
    /// Removals come before additions. Answered by updateRecordingGroupResp().
    Q_INVOKABLE bool updateRecordingGroup(const QString &groupID, const QVariantList &addCameraList,
                                          const QVariantList &removeCameraList, const QVariantList &addPathList,
                                          const QVariantList &removePathList, const QVariantList &updatePathList,
                                          const QVariantMap &setGrpInfo);
    /// Adds a group with everything it needs.
    ///
    /// @param groupInfo "recordingGroupName" (string, not empty), "recordingGroupReservedTimeEnabled" (bool) and
    ///        "recordingGroupReservedTime" (int, minutes, at least 1 when enabled); all three must be there
    /// @param paths maps with "path" (string), "pathType" (int, RecPathType), "reserveSpace" (qlonglong, a multiple of
    ///        1024) and "isRecoveryMode" (bool); at least one
    /// @param deviceInfos the members, handed on unchecked: maps as in getRecordingGroupMemberList(); may be empty
    ///
    /// Answered by addRecordingGroupWithCompleteInfoResp().
    Q_INVOKABLE bool addRecordingGroupWithCompleteInfo(const QVariantMap &groupInfo, const QVariantList &paths,
                                                       const QVariantList &deviceInfos);

    // Station tree and the cache of recording groups behind it. ---------------------------------------------------

    /// The station and its recording groups (a RecordingGroupTreeModel; roles: TreeRole). Null before Init().
    Q_INVOKABLE QObject *getRecordingGroupTreeModel() const;
    /// Refreshes the tree and empties the cache. False only when the station plug-in could not name the station, or
    /// when memory ran out or a slot threw, which keeps the cache; true also when the command could not be sent.
    /// Answered by retrieveRecordingGroupTreeModelFinish(); a refusal by the station is not signalled.
    Q_INVOKABLE bool retrieveRecordingGroupTreeModel();
    /// Empties the cache.
    Q_INVOKABLE void clearRecordingGroupDataList();
    /// Storage paths of a cached group, as the station sent them; empty when the group is not cached. The cache has the
    /// groups of the last reply to retrieveRecordingGroupTreeModel(). The getters below follow the same rule.
    Q_INVOKABLE QVariantList getRecordingGroupPathList(const QString &recordingGroupID, const QString &relayPath);
    /// Reserved space of each path, in the station's unit (MB from the station of this repository).
    Q_INVOKABLE QVariantList getRecordingGroupReservedSpaceList(const QString &recordingGroupID,
                                                                const QString &relayPath);
    /// NAS paths.
    Q_INVOKABLE QVariantList getRecordingGroupNasPathList(const QString &recordingGroupID, const QString &relayPath);
    /// Recovery paths.
    Q_INVOKABLE QVariantList getRecordingGroupRecoveryPathList(const QString &recordingGroupID,
                                                               const QString &relayPath);
    /// Reserved time in minutes; 0 when the group is not cached.
    Q_INVOKABLE int getRecordingGroupReservedTime(const QString &recordingGroupID, const QString &relayPath);
    /// Members: maps with "camName" (string), "streamIndex" (int), "enableTimeShift" (bool), "enableSeamless" (bool).
    Q_INVOKABLE QVariantList getRecordingGroupMemberList(const QString &recordingGroupID, const QString &relayPath);
    /// The first volume of the model whose path is a prefix of @p path: "size" and "availableSize" (qlonglong), "isNAS"
    /// and "isSystem" (bool); zeros when there is none, an empty map when memory ran out. It is a plain text prefix, in
    /// which a backslash equals a slash. @p relayPath is ignored: there is one volume model.
    Q_INVOKABLE QVariantMap getVolumeInfo(const QString &path, const QString &relayPath);
    /// The stream index under which another group records the camera with time shift or seamless recording; -1 when
    /// none does. @p cameraId is compared with the member's name alone, without a relay path; of each group the first
    /// member of that name counts alone.
    Q_INVOKABLE int streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups(const QString &cameraId,
                                                                         const QString &recordingGroupID,
                                                                         const QString &relayPath);
    /// Ids of the cached groups that record the camera. @p cameraID is the member's name, preceded by the relay path
    /// and "/" where the group has a relay path.
    Q_INVOKABLE QVariantList getRecordingGroupIDList(const QString &cameraID);

    // Folders of the station. -----------------------------------------------------------------------------------

    /// Lists the folders under @p basePath. Answered by getServerDirResponded().
    Q_INVOKABLE bool getServerDir(const QString &basePath, const QString &relayPath = "");

    // NAS servers. ------------------------------------------------------------------------------------------------

    /// Asks for the NAS servers. Answered by getNASServersResponded().
    Q_INVOKABLE bool getNASServers(const QString &relayPath = "");
    /// Adds a NAS server; the host must not be empty. Answered by addNASServerResponded(), unless the framework
    /// accepted a newer add before the reply came, or ignoreAddNASServerResponse() was called.
    Q_INVOKABLE bool addNASServer(const QString &host, const QString &logonDomain = QStringLiteral("Host"),
                                  const QString &userName = QStringLiteral("Guest"), const QString &password = "",
                                  const QString &relayPath = "");
    /// Changes a NAS server. For @p password the station of this repository takes the token of the model, too, while
    /// the host stays the same. Answered by updateNASServerResponsed().
    Q_INVOKABLE bool updateNASServer(const QString &id, const QString &host, const QString &domain, const QString &user,
                                     const QString &password, const QString &relayPath = "");
    /// Removes a NAS server. Answered by removeNASServerResponsed().
    Q_INVOKABLE bool removeNASServer(const QString &id, const QString &relayPath = "");
    /// Abandons the adds that are not answered yet: their replies change nothing and are not signalled.
    Q_INVOKABLE void ignoreAddNASServerResponse();
    /// Lists the folders under a NAS path, which must not be empty. Answered by getNASServerDirResponded().
    Q_INVOKABLE bool getNASServerDir(const QString &basePath, const QString &logonDomain = QStringLiteral("Host"),
                                     const QString &userName = QStringLiteral("Guest"), const QString &password = "",
                                     const QString &relayPath = "", NASDirFilter filter = NoDotAndDotDot);
    /// Asks how large a NAS path is, which must not be empty. Answered by getNASServerCapacityResponded().
    Q_INVOKABLE bool getNASServerCapacity(const QString &basePath, const QString &logonDomain = QStringLiteral("Host"),
                                          const QString &userName = QStringLiteral("Guest"),
                                          const QString &password = "", const QString &relayPath = "");
    /// Asks how large a NAS path is and adds it to the volume model; the path must not be empty. The user name is
    /// empty by default, unlike above. Answered by getNASServerCapacityResponded(); the row follows that signal.
    Q_INVOKABLE bool addNASPathToVolume(const QString &basePath, const QString &logonDomain = QStringLiteral("Host"),
                                        const QString &userName = "", const QString &password = "",
                                        const QString &relayPath = "");

    // Storage usage. ----------------------------------------------------------------------------------------------

    /// Asks the station for its usage figures, which arrive as an event: see volumeInfoChanged().
    Q_INVOKABLE bool reloadStorageUsageInfo(const QString &relayPath = "");
    /// Every group of the directly connected station: maps with "recordingGroup" (id), "groupName", "recordedDays" and
    /// "remainingDays" (int, -1 unknown) and "volumeList", a list of maps with "recordingPath", "totalSpace" and
    /// "remainingSpace" (texts such as 1.50 GB, from sizes taken as KB) and "isNAS". While the station has no usage
    /// model, a list of one empty map.
    Q_INVOKABLE QVariantList getRecordingGroupInfoList();

signals:
    /// The recording-group model holds the reply to the request @p reqId.
    void getRecordingGroupResponded(const QString &reqId);
    /// The tree and the cache hold the groups of the station.
    void retrieveRecordingGroupTreeModelFinish();
    /// The folder was made, or not.
    void createDirectoryResponded(bool success);
    /// The path was added, or not; no model changes.
    void addPathToRecordingGroupResponded(bool success);
    /// The group was added, or not; no model changes.
    void addRecordingGroupResponded(bool success);
    /// The volume model holds the reply; on failure it is empty.
    void getVolumeResponded(bool success);
    /// A station's volumes changed: its usage model is filled again, and its group volume models have ended.
    void volumeInfoChanged();
    /// @p finish: the last part of the answer.
    void removePathFromRecordingGroupResp(bool success, bool finish);
    /// @p finish: the last part of the answer.
    void removeRecordingGroupResp(bool success, bool finish);
    /// The volume model has a row more for each path that the station listed; on failure it is as it was.
    void addNASPathsToVolumeResp(bool success);
    /// @p addedGrpID is the new group's id. @p errList tells which elements the station refused, and why; empty on
    /// success: see updateRecordingGroupResp().
    void addRecordingGroupWithCompleteInfoResp(bool success, const QString &addedGrpID, QVariantList errList);
    /// @p errList tells which elements the station refused, and why, as it sent them. From the station of this
    /// repository maps with "element" (the key of the request), "index" (place in that list; -1: none), "value"
    /// (string, as it was sent), "returnCode" and, where a path cannot be written, "reason". It may be empty though the
    /// edit was refused.
    void updateRecordingGroupResp(bool success, QVariantList errList);
    /// The server directory model holds the folders under @p path; empty when the reply names none, as a refusal does.
    void getServerDirResponded(const QString &path);
    /// The station reported storage that belongs to no recording group.
    void unsupportedStorages(const QString &stationID);
    /// A refusal leaves the NAS server model as it was; without memory it holds a part of the reply.
    void getNASServersResponded(bool success);
    /// @p srvId is the new server's id, and the model has its row; empty on failure.
    void addNASServerResponded(NASServerErrorCode result, const QString &srvId);
    /// With NonError the row of @p nasId has the values that were sent, the password among them.
    void updateNASServerResponsed(NASServerErrorCode result, const QString &nasId);
    /// The row is gone, or the server was not removed.
    void removeNASServerResponsed(bool success);
    /// The NAS directory model holds the folders under @p path; on failure it is as it was and the path empty.
    void getNASServerDirResponded(NASServerErrorCode result, const QString &path);
    /// Sizes in the station's unit; 0 on failure.
    void getNASServerCapacityResponded(NASServerErrorCode result, qlonglong total, qlonglong used);
    /// The property may have changed.
    void recordingGroupRetrievedChanged();

private:
    struct Reply;
    struct ReplyRoute;
    struct ListModel;

    static const ReplyRoute replyRoutes[];
    static const ListModel listModels[];

    bool sendRequestToServer(const QString &command, const QVariant &data, void *context, const QString &relayPath);
    QObject *pluginObject(const QString &pluginId) const;

    void handleGetNASServers(const QString &result, const QVariant &data);
    void handleAddNASPathsToVolume(const QString &result, const QVariant &data);
    void handleAddNASServer(const QString &result, const QVariant &data, void *context);
    void handleUpdateNASServer(const QString &result, void *context);
    void handleRemoveNASServer(const QString &result, void *context);
    void handleGetNASServerDir(const QString &result, const QVariant &data, void *context);
    void handleGetNASServerCapacity(const QString &result, const QVariant &data, void *context);
    void handleRetrieveVolume(const QVariant &data, const QString &returnCode);
    void handleGetRecordingGroup(const QVariant &data, const QString &returnCode, void *context);
    void handleAddRecordingGroup(const QString &returnCode, bool finish);
    void handleAddRecordingGroupWithCompleteInfo(const QVariant &data, const QString &returnCode);
    void handleUpdateRecordingGroup(const QVariant &data, const QString &returnCode);
    void handleRetrieveRecordingGroupTreeModel(const QVariant &data, const QString &result);
    void handleGetServerDir(const QVariant &data, const QString &returnCode);
    void handleVolumeChanged(const QVariant &data, const QString &source);

    std::shared_ptr<VolumeReport> calculateGroupUsage(const QVariant &data) const;
    void updateRecordingGroupVolumeModel(const QString &source, const std::shared_ptr<VolumeReport> &report);
    void updateRecordingGroupUsageModel(const QString &source, const VolumeReport &report);
    void monitorVolumnStatus(const QString &source, const VolumeReport &report);
    void monitorGroupStatus(const QString &source);
    QSharedPointer<QStandardItemModel> storageUsageModel(const QString &source);

    void CreateStationTreeModel(const QVariantMap &station); // throws std::bad_alloc
    void appendRecordingGroupToTreeModel(const QVariant &data);
    void saveRecordingGroupData(const QVariant &data);
    std::vector<RecordingGroupData>::const_iterator findItemFromRecordingGroupList(const QString &recordingGroupID,
                                                                                   const QString &relayPath) const;
    const RecordingGroupIndex &groupIndex() const;
    template<typename Value>
    Value cachedField(const char *function, Value RecordingGroupData::*field, const QString &recordingGroupID,
                      const QString &relayPath) const;
    bool sendGroupPath(const char *function, const QString &command, const QString &groupKey, const QString &group,
                       const QString &path, RecPathType recPathType, qlonglong reserveSpace);
    std::optional<QVariantMap> completeGroup(const QVariantMap &groupInfo, const QVariantList &paths,
                                             const QVariantList &deviceInfos) const; // none when something is missing
    void setRecordingGroupRetrieved(bool retrieved);

    NASServerErrorCode TransferNASServerErrorCode(const QString &result) const;
    bool isContextOutOfDate(const AddNASServerContext &context) const;
    bool IsValidReservedSpace(qint64 reserveSpace) const;
    QString convertVolumeCapacity(qint64 capacity) const;
    QString toSlashPath(const QString &path) const;

    void *m_handle = nullptr; // the framework's, passed back with every command
    FrameworkWrapperBase *m_framework = nullptr; // not owned
    std::vector<RecordingGroupData> m_recordingGroups;
    QMap<QString, QSharedPointer<QStandardItemModel>> m_storageUsageModels;
    QMap<QString, std::shared_ptr<VolumeReport>> m_volumeReports; // by relay path
    QStandardItemModel *m_volumeModel = nullptr;
    QStandardItemModel *m_recordingGroupModel = nullptr;
    QStandardItemModel *m_nasServerModel = nullptr;
    QStandardItemModel *m_nasDirModel = nullptr;
    QStandardItemModel *m_serverDirModel = nullptr;
    QSharedPointer<RecordingGroupTreeModel> m_treeModel;
    QString m_addRequestId; // of the newest add of a NAS server that the framework took over
    QStringList m_addsBeingSent; // their replies may come before the framework says that it took them over
    int m_recordingGroupRetrieved = 0;
    mutable std::optional<RecordingGroupIndex> m_groupIndex; // of m_recordingGroups; built when a query needs it
    RowIds m_rowIds;
};
