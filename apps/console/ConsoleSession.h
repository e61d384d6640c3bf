#pragma once

#include "StationCameras.h"
#include "StationOverview.h"
#include "StationStorage.h"
#include "UnassignedRecordingsModel.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QVariant>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <functional>

struct LateOutcome;

/// What the pages know of the client around the plug-in: whether the station can be reached and what it is busy with,
/// the storage alarms, the words behind the plug-in's yes or no, what came of edits too late, and the station's
/// cameras, of which the plug-in knows nothing. Lives on the UI thread.
class ConsoleSession : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The client gives it to its pages.")
    Q_PROPERTY(bool connected READ isConnected NOTIFY connectedChanged)
    Q_PROPERTY(bool counting READ isCounting NOTIFY countingChanged)
    Q_PROPERTY(double countedFiles READ countedFiles NOTIFY countingChanged)
    Q_PROPERTY(double filesToCount READ filesToCount NOTIFY countingChanged)
    Q_PROPERTY(QAbstractItemModel *alarms READ alarms WRITE setAlarms NOTIFY alarmsChanged)
    Q_PROPERTY(bool alarmsKnown READ areAlarmsKnown NOTIFY
                   alarmsKnownChanged) ///< the station told them; else none means nothing
    /// What came of edits that had timed out or were left, a sentence for each, the oldest first, until
    /// forgetLateOutcomes().
    Q_PROPERTY(QStringList lateOutcomes READ lateOutcomes NOTIFY lateOutcomesChanged)
    Q_PROPERTY(bool lateFailure READ hasLateFailure NOTIFY lateOutcomesChanged) ///< one of them was not done as a whole
    /// The station's cameras as it listed them last, by name: maps with "camName" (string) and "streams" (int, from 1).
    Q_PROPERTY(QVariantList cameras READ cameras NOTIFY camerasChanged)
    /// The same cameras with what is known of the request, and what adds and removes them.
    Q_PROPERTY(StationCameras *cameraList READ cameraList CONSTANT)
    /// All stations that the connection leads to, and which one of them all the rest is about.
    Q_PROPERTY(StationOverview *stations READ stations CONSTANT)
    /// Another station was worked on before: the plug-in's models may hold what that one told.
    Q_PROPERTY(bool stationChanged READ isStationChanged NOTIFY stationLeft)
    /// What the station's volumes hold; asked for anew when the connection comes up and when the station says that
    /// figures or alarms changed.
    Q_PROPERTY(StationStorage *storage READ storage CONSTANT)
    /// Recordings that belong to no recording group; asked for while a page watches them.
    Q_PROPERTY(UnassignedRecordingsModel *unassigned READ unassigned CONSTANT)

public:
    /// Takes an answer of the station: its return code, and its data where it is success.
    using OnAnswer = std::function<void(const QString &returnCode, const QVariant &data)>;
    /// Sends the station @p command; gives the answer to @p onAnswer on the UI thread, later, and not once @p context
    /// has ended. Where no station answers, the return code is one of HostReturnCode.
    using StationCall =
        std::function<void(const QString &command, const QVariant &data, QObject *context, const OnAnswer &onAnswer)>;

    explicit ConsoleSession(QObject *parent = nullptr);

    /// Sends one of the station's own commands, as StationCall tells. Where no client listens, nothing answers.
    void callStation(const QString &command, const QVariant &data, QObject *context, const OnAnswer &onAnswer);
    void setStationCall(StationCall call);

    bool isConnected() const;
    void setConnected(bool connected);

    QVariantList cameras() const { return m_cameraList.list(); }
    StationCameras *cameraList() { return &m_cameraList; }

    StationOverview *stations() { return &m_stations; }

    StationStorage *storage() { return &m_storage; }
    UnassignedRecordingsModel *unassigned() { return &m_unassigned; }

    /// Asks the client for the station's cameras.
    Q_INVOKABLE void refreshCameras();

    /// Another station is about to be worked on: forgets what is known of this one. The pages that showed it go, and
    /// nothing that still comes of it is taken for the other's.
    void leaveStation();
    bool isStationChanged() const { return m_isStationChanged; }
    /// The other one has taken its place.
    void enterStation(bool connected);

    /// @param source of the event that is handed to the plug-in next; empty for the station that is worked on, and when
    /// the plug-in has it
    void noteArrival(const QString &source);

    /// Keeps the return code of an answer; to be called before the plug-in handles the answer.
    void noteAnswer(const QString &command, const QString &returnCode);

    /// Why the last answer to @p command was a refusal, as a sentence; empty when it was none, or when there was no
    /// answer yet.
    Q_INVOKABLE QString refusal(const QString &command) const;
    /// Whether the last refusal of @p command leaves open what came of it: no answer came, and it may take effect yet.
    Q_INVOKABLE bool isOutcomeOpen(const QString &command) const;
    /// The return code of the last answer to @p command; empty when there was none yet.
    Q_INVOKABLE QString returnCode(const QString &command) const;

    /// Keeps what came of @p subject, an edit whose dialog was left: @p refusal as a sentence, empty where it was done.
    Q_INVOKABLE void noteOutcome(const QString &subject, const QString &refusal);
    /// Keeps what came of an edit that had timed out.
    void noteLateOutcome(const LateOutcome &outcome);
    QStringList lateOutcomes() const;
    bool hasLateFailure() const;
    /// Somebody has read them.
    Q_INVOKABLE void forgetLateOutcomes();

    /// Follows the station's count of its recorded files, what changes its figures, and edits of recording groups;
    /// other events, and those of other stations, are passed over.
    void noteEvent(const QString &event, const QVariant &data, const QString &source = {});
    bool isCounting() const; ///< the station counts its recorded files, and the connection is up
    double countedFiles() const;
    double filesToCount() const; ///< negative while the station cannot tell

    /// The storage alarms in force, one row each, as the status monitor keeps them; null without one. Not owned.
    QAbstractItemModel *alarms() const;
    void setAlarms(QAbstractItemModel *alarms);
    bool areAlarmsKnown() const;
    void setAlarmsKnown(bool known);

    /// What @p returnCode means, as a sentence; empty for success.
    Q_INVOKABLE QString refusalText(const QString &returnCode) const;

    /// Why the plug-in just answered false and sent nothing, as a sentence. To be called right after that call.
    Q_INVOKABLE QString unsentText() const;
    /// @param lastFact as PluginErrors::lastFact()
    void setPluginFact(std::function<QString()> lastFact);

    /// Asks the client to acknowledge the station's alarm of this kind and subject, or to take that back; it answers
    /// with noteAcknowledgement().
    Q_INVOKABLE void acknowledgeAlarm(const QString &kind, const QString &subject, const QString &note,
                                      const QString &source = {});
    Q_INVOKABLE void withdrawAcknowledgement(const QString &kind, const QString &subject, const QString &source = {});
    void noteAcknowledgement(const QString &returnCode);

signals:
    /// The pages of the station that was worked on shall go, and those of the other one come.
    void stationLeft();
    void stationEntered();
    /// @p data as the station's @p command takes it; @p source is the station's relay path, empty: the one worked on
    void acknowledgementWanted(const QString &command, const QVariant &data, const QString &source);
    /// The station answered; @p refusal is empty when it took the acknowledgement.
    void alarmAcknowledged(const QString &refusal);
    void connectedChanged();
    /// The station, or the client in its place, refused @p command. For commands whose refusal the plug-in keeps quiet
    /// about; the plug-in hears of the refusal after this.
    void refused(const QString &command);
    void countingChanged();
    void lateOutcomesChanged();
    /// Somebody has changed recording groups, this client or another one.
    void groupsEdited();
    /// Comes before groupsEdited() and says which one.
    void groupEdited(const QString &groupId);
    void alarmsChanged();
    void alarmsKnownChanged();
    void camerasChanged();

private:
    void setCount(bool counting, qlonglong done, qlonglong total);

    bool m_connected = false;
    bool m_counting = false;
    qlonglong m_countedFiles = 0;
    qlonglong m_filesToCount = -1;
    QPointer<QAbstractItemModel> m_alarms;
    QStringList m_lateOutcomes;
    bool m_lateFailure = false;
    bool m_alarmsKnown = false;
    bool m_isStationChanged = false;
    StationOverview m_stations;
    StationCameras m_cameraList;
    StationStorage m_storage;
    StationCall m_stationCall; // empty: no client listens
    UnassignedRecordingsModel m_unassigned{m_storage};
    std::function<QString()> m_pluginFact; // empty: nobody knows
    QHash<QString, QString> m_returnCodes; // of the last answer, by command
};
