#pragma once

#include "ConsoleSession.h"

#include <QObject>
#include <QPointer>
#include <QSet>
#include <QTimer>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

#include <optional>

/// What the edit of a recording group would do, as the station forecasts it while the edit is made. Asks when nothing
/// was edited for a moment, one request at a time; the newest edit is the one that counts. Asks again when somebody
/// changed recording groups, and when the connection is back. Lives on the UI thread.
class GroupForecast : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(ConsoleSession *session READ session WRITE setSession NOTIFY sessionChanged) ///< not owned
    Q_PROPERTY(int moment READ moment WRITE setMoment NOTIFY momentChanged) ///< milliseconds without an edit
    Q_PROPERTY(State state READ state NOTIFY changed)
    /// Why the state is Failed or Refused, in words; else empty.
    Q_PROPERTY(QString reason READ reason NOTIFY changed)
    /// What the station would refuse, as entries of "errorAction".
    Q_PROPERTY(QVariantList errors READ errors NOTIFY changed)
    /// The edited group and those whose days change with it, the worst first. While a newer forecast is pending, those
    /// of the last one. Maps:
    /// "id", "name" (strings, as they will be), "edited" (bool), "isNew" (bool),
    /// "daysNow", "daysThen" (recorded and remaining days together; negative: unknown),
    /// "reservedDays" (whole days; 0: no reserved time), "missingNow", "missingThen" (days short of the reserved time;
    /// negative: unknown), "bytesPerDay" (then; negative: unknown)
    Q_PROPERTY(QVariantList groups READ groups NOTIFY changed)
    /// The volumes whose reserved space changes. Maps: "volumePath", "volumeName" (strings), "size" (bytes; negative:
    /// unknown), "reservedNow" and "reservedThen" (bytes, of all groups together).
    Q_PROPERTY(QVariantList volumes READ volumes NOTIFY changed)

public:
    enum State {
        Nothing, ///< nothing was asked
        Pending, ///< the station has not answered for the newest edit yet
        Failed, ///< nobody knows
        Refused, ///< the station would refuse the edit
        Known,
    };
    Q_ENUM(State)

    explicit GroupForecast(QObject *parent = nullptr);

    ConsoleSession *session() const { return m_session; }
    void setSession(ConsoleSession *session);
    int moment() const { return m_timer.interval(); }
    void setMoment(int milliseconds);
    State state() const { return m_state; }
    QString reason() const { return m_reason; }
    QVariantList errors() const { return m_errors; }
    QVariantList groups() const { return m_groups; }
    QVariantList volumes() const { return m_volumes; }

    /// Wants to know what @p invokable, which edits recording groups, would do with @p arguments, in the order of its
    /// parameters. The same edit again asks nothing.
    Q_INVOKABLE void ask(const QString &invokable, const QVariantList &arguments);
    /// The same of several edits, each after those before it; @p argumentLists holds the arguments of each. "index" of
    /// an error is the place of its edit, and edits that would be refused are left out of the forecast.
    Q_INVOKABLE void askAll(const QString &invokable, const QVariantList &argumentLists);
    /// Nothing is to be forecast any more.
    Q_INVOKABLE void clear();

signals:
    void changed();
    void momentChanged();
    void sessionChanged();

private:
    void want(const QString &invokable, const QVariant &data, const QSet<QString> &editedIds);
    void refresh();
    void send();
    void take(const QString &returnCode, const QVariant &data);
    void show(State state, const QString &reason = {}, const QVariantList &groups = {}, const QVariantList &errors = {},
              const QVariantList &volumes = {});

    QPointer<ConsoleSession> m_session;
    QTimer m_timer;
    std::optional<QVariantMap> m_wanted; // as "station.forecast" takes it
    QSet<QString> m_editedIds; // of the groups that it edits; the empty one is a new group
    bool m_isUnderWay = false;
    bool m_isOutdated = false; // what is under way is not about the newest edit, or groups changed since
    State m_state = Nothing;
    QString m_reason;
    QVariantList m_errors;
    QVariantList m_groups;
    QVariantList m_volumes;
};
