#include "FaultyDisk.h"
#include "GroupRequests.h"
#include "LocalClient.h"
#include "ServerVocabulary.h"
#include "StationVocabulary.h"
#include "TypedText.h"
#include "VolumeFolder.h"
#include "framework/HostReturnCode.h"
#include "store/Database.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <random>

using namespace Qt::StringLiterals;

namespace {
constexpr int patience = 40'000; // milliseconds
const QString unknownId = u"{00000000-0000-0000-0000-000000000000}"_s;

/// How many edits are made; RECORDING_TEST_EDITS asks for more.
int editCount()
{
    bool isSet = false;
    const int count = qEnvironmentVariableIntValue("RECORDING_TEST_EDITS", &isSet);
    return isSet ? count : 100;
}

QString text(const QList<StationReply> &replies)
{
    QStringList parts;
    for (const StationReply &reply : replies)
        parts.append(reply.returnCode + u' ' + typedText(reply.data) + (reply.finish ? u""_s : u" ..."_s));
    return parts.join(u'\n');
}

/// Nobody answered: whether it took effect is open, or it was not carried out.
bool isUnanswered(const QList<StationReply> &replies)
{
    const QString &code = replies.constLast().returnCode;
    return code == HostReturnCode::StationLost || code == HostReturnCode::LinkDown;
}
} // namespace

/// A station that is killed again and again while a client edits: between an edit and its answer, and at any other
/// moment. The client sends what was not answered again under the same id.
class StationKillsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void everyEditTakesEffectOnce();

private:
    enum class Kill { None, BeforeTheAnswer, AtAnyMoment };

    struct Edit
    {
        QString command;
        QVariantMap data;
    };

    QString data() const { return m_folder->filePath(u"station"_s); }
    QString recordings() const { return QFileInfo(m_folder->filePath(u"rec"_s)).canonicalFilePath(); }
    Edit edit(int number) const;
    void take(int number, const QString &answer);
    QVariant stored(const QString &statement, const QVariantList &values = {}) const;
    void deliver(const Edit &edit, int number, Kill kill);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<DiskFaults> m_faults;
    std::unique_ptr<LocalClient> m_client;
    QStringList m_answers; // to the edits so far
    QStringList m_groups; // the names that are expected
    QStringList m_ids; // likewise of their ids
    std::minstd_rand m_random; // the same in every run
    int m_unansweredEffects = 0; // done, and the answer was lost
    int m_openEdits = 0; // answered with "StationLost"
};

void StationKillsTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_folder = std::make_unique<QTemporaryDir>(onAVolume(u"kills-XXXXXX"_s));
    QVERIFY(m_folder->isValid());
    QVERIFY(QDir().mkpath(m_folder->filePath(u"rec"_s)));
    m_faults = std::make_unique<DiskFaults>(QStringList{u"die.fsync="_s + data()}, m_folder->filePath(u"faults"_s),
                                            m_folder->filePath(u"gate"_s));
    m_client = std::make_unique<LocalClient>(data());
}

void StationKillsTest::cleanup()
{
    m_faults->setGate(false);
    m_client.reset();
    QTRY_VERIFY_WITH_TIMEOUT(isFolderFree(data()), patience);
    m_faults.reset();
    m_folder.reset();
}

/// In turn: a new group, another one with everything, a new name, a removal that is half refused, a camera.
StationKillsTest::Edit StationKillsTest::edit(int number) const
{
    const QString name = u"Group %1"_s.arg(number);
    const QVariantMap path = pathMap(recordings());
    switch (number % 5) {
    case 0: {
        QVariantMap request = path;
        request.insert(FieldKey::recordingGroupName, name);
        return {ServerCommand::addRecordingGroup, request};
    }
    case 1:
        return {ServerCommand::addRecordingGroupWithCompleteInfo, groupMap(name, {path})};
    case 2:
        return {ServerCommand::updateRecordingGroup,
                {{FieldKey::recordingGroupID, m_ids.constLast()},
                 {u"updateSetRecordingGroup"_s, QVariantMap{{FieldKey::recordingGroupName, name}}}}};
    case 3:
        return {ServerCommand::removeRecordingGroup,
                {{FieldKey::recordingGroupIDList, QStringList{m_ids.at(m_ids.size() - 2), unknownId}}}};
    default:
        return {StationCommandName::addCamera, {{FieldKey::camName, name}, {StationKey::streams, 1}}};
    }
}

/// What the groups are then, as the first answer told.
void StationKillsTest::take(int number, const QString &answer)
{
    m_answers.append(answer);
    const QString name = u"Group %1"_s.arg(number);
    switch (number % 5) {
    case 0:
    case 1:
        m_groups.append(name);
        m_ids.append(m_client->replies.constLast().data.toMap().value(FieldKey::recordingGroupID).toString());
        QVERIFY(m_ids.constLast().startsWith(u'{'));
        break;
    case 2:
        m_groups.last() = name;
        break;
    case 3:
        QCOMPARE(m_client->codes(), (QStringList{u"0"_s, u"RecordingGroupNotFound"_s}));
        m_groups.removeAt(m_groups.size() - 2);
        m_ids.removeAt(m_ids.size() - 2);
        return;
    default:
        break;
    }
    QCOMPARE(m_client->codes(), QStringList{u"0"_s});
}

QVariant StationKillsTest::stored(const QString &statement, const QVariantList &values) const
{
    return Database(data()).value(statement, values);
}

/// Once, and again under the same id as long as nobody answers.
void StationKillsTest::deliver(const Edit &edit, int number, Kill kill)
{
    const QString id = u"edit-%1"_s.arg(number);
    bool isFirst = true;
    do {
        m_client->replies.clear();
        if (isFirst && kill == Kill::BeforeTheAnswer)
            QVERIFY(m_faults->setGate(true));
        m_client->send(edit.command, edit.data, id);
        if (isFirst && kill == Kill::AtAnyMoment) {
            constexpr unsigned int longest = 20'000; // microseconds
            const qint64 moment = 1000 * static_cast<qint64>(m_random() % longest);
            QElapsedTimer timer;
            timer.start();
            while (timer.nsecsElapsed() < moment)
                QCoreApplication::processEvents();
            if (const pid_t station = stationProcess(data()))
                ::kill(station, SIGKILL);
        }
        QTRY_VERIFY_WITH_TIMEOUT(!m_client->replies.isEmpty() && m_client->replies.constLast().finish, patience);
        m_faults->setGate(false); // where it killed nobody
        if (isUnanswered(m_client->replies)) {
            m_openEdits += m_client->replies.constLast().returnCode == HostReturnCode::StationLost;
            if (isFirst && stored(u"SELECT count(*) FROM edit_request WHERE id = ?"_s, {id}).toInt() > 0)
                ++m_unansweredEffects;
        }
        isFirst = false;
    } while (isUnanswered(m_client->replies));
}

void StationKillsTest::everyEditTakesEffectOnce()
{
    const int count = editCount();
    for (int number = 0; number < count; ++number) {
        const Edit made = edit(number);
        const Kill kill = number % 8 == 0 ? Kill::BeforeTheAnswer : number % 8 == 4 ? Kill::AtAnyMoment : Kill::None;
        deliver(made, number, kill);
        take(number, text(m_client->replies));
        if (QTest::currentTestFailed())
            return;
        if (kill != Kill::None) { // the answer that came at last is that of the first time
            deliver(made, number, Kill::None);
            QCOMPARE(text(m_client->replies), m_answers.constLast());
        }
    }
    qInfo("%d edits were answered with \"StationLost\", %d of them had taken effect", m_openEdits, m_unansweredEffects);
    QVERIFY(m_openEdits >= count / 16);
    QVERIFY(m_unansweredEffects >= count / 32);

    do { // the last kill may be heard of now
        m_client->replies.clear();
        m_client->send(ServerCommand::getRecordingGroup);
        QTRY_VERIFY_WITH_TIMEOUT(!m_client->replies.isEmpty(), patience);
    } while (isUnanswered(m_client->replies));
    QStringList groups;
    const QVariantList listed = m_client->replies.constFirst().data.toList();
    for (const QVariant &group : listed)
        groups.append(group.toMap().value(FieldKey::recordingGroupName).toString());
    QCOMPARE(groups, m_groups);
    const auto ofKind = [count](int kind) { return (count - kind + 4) / 5; };
    QCOMPARE(stored(u"SELECT count(*) FROM camera"_s).toInt(), ofKind(4));
    QCOMPARE(stored(u"SELECT count(*) FROM activity"_s).toInt(), count + ofKind(3)); // removals have two parts
    QCOMPARE(stored(u"SELECT count(*) FROM edit_request"_s).toInt(), count);
}

QTEST_GUILESS_MAIN(StationKillsTest)
#include "tst_station_kills.moc"
