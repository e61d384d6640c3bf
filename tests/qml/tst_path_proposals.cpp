#include "PathProposals.h"
#include "StationAnswers.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
constexpr qint64 gigabyte = 1024 * 1024 * 1024;

QVariantMap volume(const QString &path, qint64 freeGigabytes, const QStringList &groupPaths = {}, bool isSystem = false,
                   const QString &state = u"there"_s)
{
    const QVariantMap group{
        {u"recordingGroupID"_s, u"{1}"_s}, {u"paths"_s, groupPaths}, {u"reserveSpace"_s, 10 * 1024}};
    return {{u"volumePath"_s, path},
            {u"volumeName"_s, path.mid(1)},
            {u"volumeIsSystem"_s, isSystem},
            {u"kind"_s, path.startsWith(u"//"_s) ? u"NAS"_s : u"local"_s},
            {u"state"_s, state},
            {u"size"_s, 100 * gigabyte},
            {u"free"_s, freeGigabytes * gigabyte},
            {u"groups"_s, groupPaths.isEmpty() ? QVariantList() : QVariantList{group}}};
}

QStringList pathsIn(const StationAnswers::Call &call)
{
    QStringList paths;
    for (const QVariant &entry : call.data[u"data"_s].toMap()[u"pathInfoList"_s].toList())
        paths.append(entry.toMap()[u"path"_s].toString());
    return paths;
}

/// The answer that refuses the paths of these places, and the name.
QVariantMap refusing(const QList<int> &places)
{
    QVariantList errors{QVariantMap{{u"element"_s, u"recordingGroupName"_s}, {u"index"_s, -1}}};
    for (const int place : places)
        errors.append(QVariantMap{{u"element"_s, u"pathInfoList"_s}, {u"index"_s, place}});
    return {{u"returnCode"_s, u"PathNotWritable"_s}, {u"errors"_s, errors}};
}
} // namespace

/// Which folders are proposed for a new path.
class PathProposalsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        m_session = std::make_unique<ConsoleSession>();
        m_session->setConnected(true);
        m_station = std::make_unique<StationAnswers>(*m_session);
        m_proposals = std::make_unique<PathProposals>();
        m_proposals->setSession(m_session.get());
    }
    void cleanup()
    {
        m_proposals.reset();
        m_session.reset();
        m_station.reset();
    }

    void emptiestVolumeFirst();
    void onlyWhatTheStationAccepts();
    void figuresFollowWithoutAsking();
    void newVolumesAreAskedAbout();
    void failureProposesNothing();
    void stoppedAsksNothing();

private:
    QStringList paths() const
    {
        QStringList paths;
        for (const QVariant &entry : m_proposals->proposals())
            paths.append(entry.toMap()[u"path"_s].toString());
        return paths;
    }
    void show(const QVariantList &volumes) { m_session->storage()->take(volumes); }

    std::unique_ptr<ConsoleSession> m_session;
    std::unique_ptr<StationAnswers> m_station;
    std::unique_ptr<PathProposals> m_proposals;
};

void PathProposalsTest::emptiestVolumeFirst()
{
    show({volume(u"/"_s, 90, {u"/var/rec"_s}, true), volume(u"/a"_s, 10), volume(u"/b"_s, 50, {u"/b/north"_s}),
          volume(u"/gone"_s, 95, {}, false, u"gone"_s), volume(u"/ro"_s, 95, {}, false, u"readOnly"_s),
          volume(u"//nas/video"_s, 95)});
    QCOMPARE(m_station->calls.size(), 0);
    m_proposals->refresh();
    QCOMPARE(m_station->calls.size(), 1);
    QCOMPARE(m_station->calls.constFirst().data[u"command"_s], QVariant(u"addRecordingGroupWithCompleteInfo"_s));
    QCOMPARE(pathsIn(m_station->calls.constFirst()),
             (QStringList{u"/b"_s, u"/b/north"_s, u"/a"_s, u"/"_s, u"/var/rec"_s}));
    QVERIFY(!m_proposals->isAnswered());
    m_station->answer(refusing({}));
    QCOMPARE(paths(), (QStringList{u"/b"_s, u"/b/north"_s, u"/a"_s, u"/"_s, u"/var/rec"_s}));
    QVERIFY(m_proposals->isAnswered());
    const QVariantMap first = m_proposals->proposals().constFirst().toMap();
    QCOMPARE(first[u"free"_s].toDouble(), 50.0 * gigabyte);
    QCOMPARE(first[u"left"_s].toDouble(), 90.0 * gigabyte);
    QCOMPARE(first[u"isSystem"_s], QVariant(false));
    QCOMPARE(m_proposals->proposals().constLast().toMap()[u"isSystem"_s], QVariant(true));
}

void PathProposalsTest::onlyWhatTheStationAccepts()
{
    show({volume(u"/a"_s, 10), volume(u"/b"_s, 50, {u"/b/north"_s, u"/b/south"_s})});
    m_proposals->refresh();
    m_station->answer(refusing({0, 2}));
    QCOMPARE(paths(), (QStringList{u"/b/north"_s, u"/a"_s}));
}

void PathProposalsTest::figuresFollowWithoutAsking()
{
    show({volume(u"/a"_s, 10), volume(u"/b"_s, 50)});
    m_proposals->refresh();
    m_station->answer(refusing({}));
    show({volume(u"/a"_s, 60), volume(u"/b"_s, 50)});
    QCOMPARE(m_station->calls.size(), 0);
    QCOMPARE(paths(), (QStringList{u"/a"_s, u"/b"_s}));
}

void PathProposalsTest::newVolumesAreAskedAbout()
{
    m_proposals->refresh();
    QCOMPARE(m_station->calls.size(), 0);
    QVERIFY(!m_proposals->isAnswered());
    show({volume(u"/a"_s, 10)});
    m_station->answer(refusing({}));
    show({volume(u"/a"_s, 10), volume(u"/b"_s, 50)});
    QCOMPARE(m_station->calls.size(), 1);
    QCOMPARE(pathsIn(m_station->calls.constFirst()), QStringList{u"/b"_s});
    QCOMPARE(paths(), QStringList{u"/a"_s});
    m_proposals->refresh();
    QCOMPARE(m_station->calls.size(), 1);
    m_station->answer(refusing({0}));
    QCOMPARE(pathsIn(m_station->calls.constFirst()), (QStringList{u"/b"_s, u"/a"_s})); // asked again as a whole
    m_station->answer(refusing({0}));
    QCOMPARE(paths(), QStringList{u"/a"_s});
}

void PathProposalsTest::failureProposesNothing()
{
    show({volume(u"/a"_s, 10)});
    m_proposals->refresh();
    m_station->answer({}, u"NoAnswer"_s);
    QCOMPARE(paths(), QStringList());
    QVERIFY(m_proposals->isAnswered());
    m_proposals->refresh();
    m_station->answer(QVariantMap());
    QCOMPARE(paths(), QStringList());
}

void PathProposalsTest::stoppedAsksNothing()
{
    m_proposals->refresh();
    m_proposals->stop();
    show({volume(u"/a"_s, 10)});
    QCOMPARE(m_station->calls.size(), 0);
}

QTEST_GUILESS_MAIN(PathProposalsTest)
#include "tst_path_proposals.moc"
