#pragma once

#include "StationDirectory.h"

#include <QAbstractListModel>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <functional>

/// The stations of the site, a row for each, and which one the console works on. Rows that change are told one by one
/// and in as many turns of the event loop as they take; no row ever moves. What the rows are sorted by is as of the
/// last settle(), so that none moves under the pointer either. Lives on the UI thread.
class StationOverview : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The session has it.")
    /// The connection leads to more stations than one, or might.
    Q_PROPERTY(bool site READ isSite NOTIFY changed)
    Q_PROPERTY(int count READ count NOTIFY changed) ///< stations
    Q_PROPERTY(int notUp READ notUp NOTIFY changed) ///< stations that are not up
    Q_PROPERTY(int untold READ untold NOTIFY changed) ///< those that are up and have not told their alarms yet
    Q_PROPERTY(QString direct READ direct NOTIFY directChanged) ///< relay path of the one that is worked on
    Q_PROPERTY(QString directName READ directName NOTIFY directChanged)
    Q_PROPERTY(QString failure READ failure NOTIFY failureChanged) ///< why the last choice was in vain, a sentence
    /// Somebody looks; else rows are brought up to date, and the order settled, when somebody begins to.
    Q_PROPERTY(bool active READ isActive WRITE setActive NOTIFY activeChanged)
    /// How many stations would stand at another place now than they were sorted to, by badness.
    Q_PROPERTY(int unsettled READ unsettled NOTIFY unsettledChanged)

public:
    enum State {
        NotHeardOf, ///< it is silent, or nothing is known but its name
        Connecting,
        Down,
        Up,
    };
    Q_ENUM(State)

    enum Role {
        RelayPath = Qt::UserRole + 1, ///< "relayPathRole", string
        Name, ///< "nameRole", string: as nameOf() has it
        Address, ///< "addressRole", string; may be empty
        Version, ///< "versionRole", string; may be empty
        StateRole, ///< "stateRole": State
        Since, ///< "sinceRole", QDateTime: of its state; invalid: unknown
        Reason, ///< "reasonRole", string: why it is not up
        MissingDays, ///< "missingDaysRole", int: how many days its worst recording group is short; negative: not known
        ShortGroups, ///< "shortGroupsRole", int: recording groups that are short; negative: not known
        UnknownGroups, ///< "unknownGroupsRole", int: of which nobody knows whether they are
        Free, ///< "freeRole", double: bytes that recording groups can still fill; negative: not known
        Alarms, ///< "alarmsRole", int
        Errors, ///< "errorsRole", int: alarms that say that something is broken
        AlarmsKnown, ///< "alarmsKnownRole", bool: it has told its alarms
        FiguresAt, ///< "figuresAtRole", QDateTime: of when figures and alarms are; invalid: of now, or there are none
        Direct, ///< "directRole", bool: it is the one that is worked on
        BadnessOrder, ///< "badnessOrderRole", double: the higher, the worse; as of settle(), like those below
        MissingOrder, ///< "missingOrderRole", int
        FreeOrder, ///< "freeOrderRole", double
        AlarmsOrder, ///< "alarmsOrderRole", int
    };
    Q_ENUM(Role)

    explicit StationOverview(QObject *parent = nullptr);

    bool isSite() const { return m_isSite; }
    int count() const { return m_count; }
    int notUp() const { return m_notUp; }
    int untold() const { return m_untold; }
    QString direct() const { return m_direct; }
    QString directName() const { return nameOf(m_direct); }
    QString failure() const { return m_failure; }
    bool isActive() const { return m_isActive; }
    void setActive(bool active);
    int unsettled() const { return static_cast<int>(m_unsettled.size()); }

    /// The name of a station; its relay path where it has told none, and with it where others have the same name.
    Q_INVOKABLE QString nameOf(const QString &relayPath) const;
    /// What an alarm of @p source is to be marked with: a name, or nothing where there is one station alone.
    Q_INVOKABLE QString label(const QString &source) const;
    /// The row of a station; -1 without one.
    Q_INVOKABLE int rowOf(const QString &relayPath) const;
    /// The relay path of a row; empty without one.
    Q_INVOKABLE QString relayPathAt(int row) const;
    /// Asks the client to work on another station: directChanged() follows, or failureChanged().
    Q_INVOKABLE void choose(const QString &relayPath);
    Q_INVOKABLE void dismissFailure();
    /// What rows are sorted by is as of now.
    Q_INVOKABLE void settle();

    using RecordOf = std::function<StationDirectory::Record(const QString &relayPath)>;
    /// What the client knows of these stations is new; @p recordOf gives it, later, too.
    void take(const QStringList &relayPaths, const RecordOf &recordOf);
    /// @param count of stations, those that are not up, and those that are and have not told their alarms
    void setCounts(int count, int notUp, int untold);
    void setSite(); ///< the connection might lead to more stations than one
    void setDirect(const QString &relayPath);
    void refuse(const QString &sentence); ///< the choice

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void changed();
    void directChanged();
    void failureChanged();
    void activeChanged();
    void unsettledChanged();
    void chosen(const QString &relayPath); ///< the client shall make it the directly connected one

private:
    struct Order
    {
        double badness = 0;
        int missing = -1;
        double free = -1;
        int alarms = -1;
    };
    struct Row
    {
        StationDirectory::Record record;
        Order order;
    };

    bool noteName(const QString &relayPath, const QString &name);
    void applySome();
    void insert(const QList<StationDirectory::Record> &records);
    void update(int row, const StationDirectory::Record &record);
    void noteOrder(int row);
    static Order orderOf(const StationDirectory::Record &record);

    QList<Row> m_rows;
    QHash<QString, int> m_places; // by relay path
    QHash<QString, int> m_nameUses; // stations of a name
    QHash<QString, QString> m_names; // of all stations, also of those whose rows are still to come
    QSet<QString> m_pending;
    QSet<QString> m_unsettled;
    RecordOf m_recordOf;
    QTimer m_later;
    QString m_direct;
    QString m_failure;
    int m_count = 0;
    int m_notUp = 0;
    int m_untold = 0;
    bool m_isSite = false;
    bool m_isActive = false;
    bool m_settlesNext = false; // once the rows are up to date
};
