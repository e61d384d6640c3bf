#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

/// The cameras of the connected station as it listed them last, and what changes them. The plug-in knows no command for
/// cameras: the client sends the station's own. Lives on the UI thread.
class StationCameras : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The session has it.")
    /// By name: maps with "camName" (string) and "streams" (int, from 1). What was listed stays while the station is
    /// asked again, and when it refuses.
    Q_PROPERTY(QVariantList list READ list NOTIFY listChanged)
    Q_PROPERTY(bool known READ isKnown NOTIFY changed) ///< the station has listed them
    Q_PROPERTY(bool loading READ isLoading NOTIFY changed) ///< an answer is outstanding
    /// Why the last request was in vain, as a sentence; empty when it was not.
    Q_PROPERTY(QString failure READ failure NOTIFY changed)
    /// Cameras are being added or removed.
    Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged)
    Q_PROPERTY(int toRemove READ toRemove NOTIFY busyChanged) ///< cameras whose removal is still to come or under way

public:
    using QObject::QObject;

    QVariantList list() const { return m_list; }
    bool isKnown() const { return m_isKnown; }
    bool isLoading() const { return m_isAsked; }
    QString failure() const { return m_failure; }
    bool isBusy() const { return !m_command.isEmpty(); }
    int toRemove() const { return static_cast<int>(m_toRemove.size()); }

    /// Asks the client for the list, once more after the answer where one is outstanding. It answers with take() or
    /// fail().
    Q_INVOKABLE void refresh();
    void take(const QVariantList &cameras);
    void fail(const QString &sentence);

    /// Asks the client to add a camera with 1 to 16 streams; added() tells the outcome. False while something else is
    /// under way.
    Q_INVOKABLE bool add(const QString &name, int streams);
    /// Asks the client to remove cameras, one after the other; removed() tells of each and removalEnded() of all. False
    /// while something else is under way, or where nothing is named.
    Q_INVOKABLE bool remove(const QStringList &names);
    /// Leaves the cameras that were not asked for yet; the one under way is still answered.
    Q_INVOKABLE void cancelRemoval();
    /// Another station is asked from now on: the cameras of this one are forgotten, and what was to be done with them.
    void forget();
    /// The answer to editWanted(); @p refusal is a sentence, empty for success.
    void noteEdit(const QString &refusal);

signals:
    void changed();
    void listChanged();
    void busyChanged();
    void wanted(); ///< the client shall ask the station
    /// The client shall send @p command; it answers with noteEdit().
    void editWanted(const QString &command, const QVariantMap &data);
    /// @p refusal is empty when the camera was added.
    void added(const QString &name, const QString &refusal);
    void removed(const QString &name, const QString &refusal); ///< likewise
    void removalEnded();

private:
    void answered();
    void removeNext();
    void endEdit();

    QVariantList m_list;
    QString m_failure;
    bool m_isKnown = false;
    bool m_isAsked = false;
    bool m_isAskedAgain = false;
    QString m_command; // the edit under way, or empty
    QString m_added;
    QStringList m_toRemove; // the first one is under way
};
