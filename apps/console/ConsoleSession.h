#pragma once

#include <QAbstractItemModel>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QVariant>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

/// What the pages know of the client around the plug-in: whether the station can be reached and what it is busy with,
/// the storage alarms, the words behind the plug-in's yes or no, and the station's cameras, of which the plug-in knows
/// nothing. Lives on the UI thread.
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
    /// The station's cameras as it listed them last, by name: maps with "camName" (string) and "streams" (int, from 1).
    Q_PROPERTY(QVariantList cameras READ cameras NOTIFY camerasChanged)

public:
    explicit ConsoleSession(QObject *parent = nullptr);

    bool isConnected() const;
    void setConnected(bool connected);

    QVariantList cameras() const;
    void setCameras(const QVariantList &cameras);

    /// Asks the client for the station's cameras; it answers with setCameras(), or not at all.
    Q_INVOKABLE void refreshCameras();

    /// Keeps the return code of an answer; to be called before the plug-in handles the answer.
    void noteAnswer(const QString &command, const QString &returnCode);

    /// Why the last answer to @p command was a refusal, as a sentence; empty when it was none, or when there was no
    /// answer yet.
    Q_INVOKABLE QString refusal(const QString &command) const;
    /// The return code of the last answer to @p command; empty when there was none yet.
    Q_INVOKABLE QString returnCode(const QString &command) const;

    /// Follows the station's count of its recorded files; other events are passed over.
    void noteEvent(const QString &event, const QVariant &data);
    bool isCounting() const; ///< the station counts its recorded files, and the connection is up
    double countedFiles() const;
    double filesToCount() const; ///< negative while the station cannot tell

    /// The storage alarms in force, one row each, as the status monitor keeps them; null without one. Not owned.
    QAbstractItemModel *alarms() const;
    void setAlarms(QAbstractItemModel *alarms);

    /// What @p returnCode means, as a sentence; empty for success.
    Q_INVOKABLE QString refusalText(const QString &returnCode) const;

signals:
    void connectedChanged();
    /// The station, or the client in its place, refused @p command. For commands whose refusal the plug-in keeps quiet
    /// about; the plug-in hears of the refusal after this.
    void refused(const QString &command);
    void countingChanged();
    void alarmsChanged();
    void camerasChanged();
    void camerasWanted(); ///< refreshCameras() was called

private:
    void setCount(bool counting, qlonglong done, qlonglong total);

    bool m_connected = false;
    bool m_counting = false;
    qlonglong m_countedFiles = 0;
    qlonglong m_filesToCount = -1;
    QPointer<QAbstractItemModel> m_alarms;
    QVariantList m_cameras;
    QHash<QString, QString> m_returnCodes; // of the last answer, by command
};
