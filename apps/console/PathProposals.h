#pragma once

#include "ConsoleSession.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

/// Folders for a new path of a recording group, all of which the station would accept at the moment: the station's own
/// disks, and the folders that groups record to there. Lives on the UI thread.
class PathProposals : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(ConsoleSession *session READ session WRITE setSession NOTIFY sessionChanged) ///< not owned
    /// Maps, the emptiest volume first and the system's behind all others: "path", "volumeName" (strings), "isSystem"
    /// (bool), "free" and "left" (double, bytes; what may still be reserved there).
    Q_PROPERTY(QVariantList proposals READ proposals NOTIFY changed)
    Q_PROPERTY(bool answered READ isAnswered NOTIFY changed) ///< the station has told about all folders, or cannot

public:
    using QObject::QObject;

    ConsoleSession *session() const { return m_session; }
    void setSession(ConsoleSession *session);
    QVariantList proposals() const { return m_proposals; }
    bool isAnswered() const { return m_isAnswered; }

    /// Asks the station about all folders anew, and from now on about those that come. Several calls while an answer is
    /// outstanding ask once more.
    Q_INVOKABLE void refresh();
    /// Asks nothing any more.
    Q_INVOKABLE void stop();

signals:
    void changed();
    void sessionChanged();

private:
    void follow();
    void ask(const QStringList &paths);
    void take(const QStringList &paths, const QString &returnCode, const QVariant &data);

    QPointer<ConsoleSession> m_session;
    bool m_isFollowing = false;
    bool m_isUnderWay = false;
    bool m_isAskedAgain = false;
    bool m_isAnswered = false;
    QHash<QString, bool> m_isAccepted; // by path
    QVariantList m_proposals;
};
