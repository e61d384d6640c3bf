#pragma once

#include <QObject>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

/// What the connected station's volumes hold, as it told last: the one picture that all pages draw from. Lives on the
/// UI thread.
class StationStorage : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The session has it.")
    /// As the command "station.listStorage" answers; empty while nothing is known.
    Q_PROPERTY(QVariantList volumes READ volumes NOTIFY changed)
    /// Why the last request was in vain, as a sentence; empty when it was not.
    Q_PROPERTY(QString failure READ failure NOTIFY changed)

public:
    using QObject::QObject;

    QVariantList volumes() const { return m_volumes; }
    QString failure() const { return m_failure; }

    /// Asks the client for the list, once more after the answer where one is outstanding. It answers with take() or
    /// fail().
    Q_INVOKABLE void refresh();
    /// While an event of another station is handed to the plug-in: that its figures changed is not about this one.
    Q_INVOKABLE bool isElsewhere() const { return m_isElsewhere; }
    void setElsewhere(bool elsewhere) { m_isElsewhere = elsewhere; }
    void take(const QVariantList &volumes);
    void fail(const QString &sentence);
    /// Another station is asked from now on.
    void forget();
    /// The station is gone: what it told is kept, and no answer is waited for.
    void forgetRequest();

    /// The volume on which a recording path lies, lost ones included; empty where nobody knows.
    Q_INVOKABLE QVariantMap holding(const QString &path, bool isNas) const;
    /// What recording groups reserve and record on @p volume, a map of volumes(), seen from the group of @p groupId,
    /// which may be empty. Bytes; negative: unknown. "byOthers", "left" (what this group may reserve at most),
    /// "recorded" and "bytesPerDay" (of this group).
    Q_INVOKABLE QVariantMap reserves(const QVariantMap &volume, const QString &groupId) const;
    /// The group has storage, and none of it is there: its volumes are gone or do not answer. False where nobody knows.
    Q_INVOKABLE bool hasLost(const QString &groupId) const;
    /// What a group records, a map: "bytesPerDay" (double, on all its volumes together) and "recordedDays" (int; known
    /// where it has one volume alone, as days on several overlap). -1: nobody knows.
    Q_INVOKABLE QVariantMap recordedBy(const QString &groupId) const;
    /// As volumeParts().
    Q_INVOKABLE QVariantList parts(const QVariantMap &volume, const QString &groupId = {}) const;

signals:
    void changed();
    void wanted(); ///< the client shall ask the station

private:
    void answered();

    QVariantList m_volumes;
    QString m_failure;
    bool m_isElsewhere = false;
    bool m_isAsked = false;
    bool m_isAskedAgain = false;
};
