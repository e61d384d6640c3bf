#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

/// The deletion of recordings of no group that the station carries out, whoever asked for it, or the one that ended
/// last. A station carries out one at a time. Lives on the UI thread.
class RecordingsDeletion : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The list of recordings of no group has it.")
    Q_PROPERTY(QString place READ place NOTIFY changed) ///< empty: none is known, or forget() was called
    Q_PROPERTY(bool running READ isRunning NOTIFY changed)
    Q_PROPERTY(bool cancelling READ isCancelling NOTIFY changed) ///< it was told to stop, and has not ended yet
    /// Why it could not be told to stop, as a sentence; empty when it could, or was not tried.
    Q_PROPERTY(QString cancelFailure READ cancelFailure NOTIFY changed)
    /// Files and bytes; negative: not known.
    Q_PROPERTY(double deletedFiles READ deletedFiles NOTIFY changed)
    Q_PROPERTY(double files READ files NOTIFY changed) ///< that the place had when it began
    Q_PROPERTY(double deletedBytes READ deletedBytes NOTIFY changed)
    Q_PROPERTY(double bytes READ bytes NOTIFY changed) ///< likewise
    /// What it came to: a return code of the station; empty while it runs.
    Q_PROPERTY(QString returnCode READ returnCode NOTIFY changed)
    Q_PROPERTY(Outcome outcome READ outcome NOTIFY changed)
    Q_PROPERTY(double leftFiles READ leftFiles NOTIFY changed) ///< recordings that could not be deleted
    Q_PROPERTY(double leftBytes READ leftBytes NOTIFY changed)
    Q_PROPERTY(double leftEntries READ leftEntries NOTIFY changed) ///< these, and all else that is left there
    /// Some of what is left: "path" and why it is, a sentence each.
    Q_PROPERTY(QStringList left READ left NOTIFY changed)

public:
    enum Outcome {
        Open, ///< it runs, or there is none
        Done, ///< no recordings are left that were counted
        Incomplete, ///< some could not be deleted
        Cancelled,
        Failed, ///< it ended early for another reason
        Unheard, ///< it ended while there was no connection, and its place is not listed any more
    };
    Q_ENUM(Outcome)

    using QObject::QObject;

    QString place() const { return m_place; }
    bool isRunning() const { return m_isRunning; }
    bool isCancelling() const { return m_isCancelling; }
    QString cancelFailure() const { return m_cancelFailure; }
    double deletedFiles() const { return static_cast<double>(m_deletedFiles); }
    double files() const { return static_cast<double>(m_files); }
    double deletedBytes() const { return static_cast<double>(m_deletedBytes); }
    double bytes() const { return static_cast<double>(m_bytes); }
    QString returnCode() const { return m_returnCode; }
    Outcome outcome() const;
    double leftFiles() const { return static_cast<double>(m_leftFiles); }
    double leftBytes() const { return static_cast<double>(m_leftBytes); }
    double leftEntries() const { return static_cast<double>(m_leftEntries); }
    QStringList left() const { return m_left; }

    /// The station has begun one. @param sums its answer to "station.deleteRecordings"
    void begin(const QVariantMap &sums);
    /// @param progress the map of "station.DeletionProgress"
    void takeProgress(const QVariantMap &progress);
    /// Compares with a list that came after everything else: begins the one that it says is running, and ends one
    /// whose end was not heard. @param places the answer to "station.listUnassignedRecordings"
    void compareWith(const QVariantList &places);
    /// The station is told to stop it.
    void beginCancel();
    /// That was in vain; it goes on.
    void refuseCancel(const QString &sentence);

    /// Somebody has read what it came to; nothing happens while it runs.
    Q_INVOKABLE void forget();

    /// Another station is worked on: its deletions are followed, this one's are not.
    void leave();

signals:
    void changed();

private:
    void clear(const QString &place);
    void end(const QString &returnCode);

    QString m_place;
    bool m_isRunning = false;
    bool m_isCancelling = false;
    QString m_cancelFailure;
    qint64 m_deletedFiles = -1;
    qint64 m_files = -1;
    qint64 m_deletedBytes = -1;
    qint64 m_bytes = -1;
    QString m_returnCode;
    qint64 m_leftFiles = -1;
    qint64 m_leftBytes = -1;
    qint64 m_leftEntries = -1;
    QStringList m_left;
};
