#include "ClientSession.h"
#include "GroupRequests.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "framework/HostReturnCode.h"
#include "link/LocalLink.h"

#include <QAbstractItemModel>
#include <QCoreApplication>
#include <QFile>
#include <QSocketNotifier>

#include <cstdio>
#include <utility>

#include <unistd.h>

namespace {
void print(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

/// What the console's page of recording groups does: it has the tree's model bound, and asks for the groups when the
/// connection comes up and when somebody edited one.
class GroupsPage : public QObject
{
    Q_OBJECT
public:
    explicit GroupsPage(ClientSession &session)
        : m_plugin(*session.plugin())
    {
        connect(&session, &ClientSession::connectedChanged, this,
                [](bool connected) { print(connected ? QStringLiteral("up") : QStringLiteral("down")); });
        connect(&session, &ClientSession::connectedChanged, this, &GroupsPage::refresh);
        connect(&session, &ClientSession::lateOutcomeCame, this, [](const LateOutcome &outcome) {
            print(QStringLiteral("late %1 %2").arg(outcome.subject, outcome.returnCode));
        });
        connect(session.framework(), &HostFramework::eventDelivered, this, &GroupsPage::takeEvent);
        connect(session.framework(), &HostFramework::commandAnswered, this, &GroupsPage::takeAnswer);
    }

    /// "add NAME FOLDER" makes a group, "quit" ends.
    void obey(const QString &line)
    {
        const QStringList words = line.split(u' ');
        if (words.constFirst() == QStringLiteral("quit")) {
            QCoreApplication::quit();
            return;
        }
        const QVariantMap info = groupMap(words.value(1), {});
        const QVariantList paths{pathMap(words.value(2))};
        bool isSent = false;
        QMetaObject::invokeMethod(&m_plugin, "addRecordingGroupWithCompleteInfo", Q_RETURN_ARG(bool, isSent),
                                  Q_ARG(QVariantMap, info), Q_ARG(QVariantList, paths),
                                  Q_ARG(QVariantList, QVariantList()));
        if (!isSent)
            print(QStringLiteral("unsent"));
    }

private:
    void refresh()
    {
        bool isSent = false;
        if (m_isAsking)
            m_askAgain = true;
        else if (QMetaObject::invokeMethod(&m_plugin, "retrieveRecordingGroupTreeModel", Q_RETURN_ARG(bool, isSent)))
            m_isAsking = isSent;
    }

    void takeEvent(const QString &event)
    {
        if (event == StationEventName::ActivityAdded)
            refresh();
    }

    void takeAnswer(const QString &command, const QString &returnCode)
    {
        if (command == ServerCommand::addRecordingGroupWithCompleteInfo)
            print(QStringLiteral("answer ") + returnCode);
        if (command != ServerCommand::retrieveRecordingGroupTreeModel)
            return;
        const auto show = [this, returnCode] { // once the plug-in has filled its model
            m_isAsking = false;
            if (returnCode == ReturnCode::Success)
                print(QStringLiteral("groups ") + names().join(u' '));
            const bool isTimedOut = returnCode == HostReturnCode::NoAnswer; // an operator tries again
            if (std::exchange(m_askAgain, false) || isTimedOut)
                refresh();
        };
        QMetaObject::invokeMethod(this, show, Qt::QueuedConnection);
    }

    QStringList names() const
    {
        QObject *object = nullptr;
        QMetaObject::invokeMethod(&m_plugin, "getRecordingGroupTreeModel", Q_RETURN_ARG(QObject *, object));
        const auto *tree = qobject_cast<QAbstractItemModel *>(object);
        if (!tree)
            return {};
        QStringList list;
        const int role = tree->roleNames().key("nameRole");
        const QModelIndex station = tree->index(0, 0);
        for (int row = 0; row < tree->rowCount(station); ++row)
            list.append(tree->index(row, 0, station).data(role).toString());
        list.sort();
        return list;
    }

    QObject &m_plugin;
    bool m_isAsking = false;
    bool m_askAgain = false;
};
} // namespace

/// A client as the console is, without a window. Takes a station's URL and how many milliseconds it may take to answer,
/// does what it reads, and prints what it hears: "up", "down", "groups NAME...", "answer CODE", "late SUBJECT CODE".
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    ClientSession session;
    ClientSession::Options options;
    options.pluginFolders = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    options.url = arguments.value(1);
    options.linkKinds = {LocalLink::kind()};
    options.replyTimeout = std::chrono::milliseconds(arguments.value(2).toInt());
    if (!session.start(options)) {
        std::fprintf(stderr, "%s\n", qPrintable(session.error()));
        return 1;
    }
    GroupsPage page(session);
    QFile input;
    if (!input.open(STDIN_FILENO, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return 2;
    const QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &page, [&input, &page] {
        const QByteArray line = input.readLine().trimmed();
        page.obey(line.isEmpty() ? QStringLiteral("quit") : QString::fromUtf8(line));
    });
    return QCoreApplication::exec();
}

#include "console_client.moc"
