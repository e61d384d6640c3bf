#include "GroupText.h"
#include "groups/GroupStore.h"
#include "store/Database.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <future>
#include <memory>

/// Recording groups and cameras as rows of the database: what is written is read again, by this station or the next.
class StationGroupStoreTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aGroupIsReadAsItWasWritten();
    void anEmptyGroupIsReadAsItWasWritten();
    void groupsComeInTheOrderInWhichTheyWereMade();
    void aReplacedGroupKeepsItsPlace();
    void replacingAGroupThatIsGoneFails();
    void aRemovedGroupLeavesNothing();
    void camerasComeByName();
    void aMemberKeepsItsCamera();
    void namesAndPathsAreUnique();
    void whatIsReadIsOfOneMoment();
    void groupsAreReadAtOneMoment();

private:
    QString folder() const { return m_folder->path(); }
    int rows(const QString &table);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Database> m_database;
    std::unique_ptr<GroupStore> m_store;
};

namespace {
RecordingGroup yard()
{
    return {
        QStringLiteral("{6f4dd0d4-3df9-4bd1-9f7c-2f1f0c2f1f70}"),
        QStringLiteral("Höfe \"Süd\" % 1'"),
        QStringLiteral("Höfe"),
        {{QStringLiteral("/mnt/b"), PathKind::Local, Q_INT64_C(1024) << 40, false},
         {QStringLiteral("//nas/a"), PathKind::NetDomain, 0, true},
         {QStringLiteral("//nas/b"), PathKind::NetHost, 2048, false}},
        {{QStringLiteral("Yard"), 1, true, false}, {QStringLiteral("Gate"), 0, false, true}},
        {QStringLiteral("z"), QStringLiteral("a")},
        90,
        true,
    };
}

RecordingGroup named(const QString &name)
{
    RecordingGroup group;
    group.id = u'{' + name + u'}';
    group.name = name;
    group.folder = name;
    return group;
}

/// Everything of @p group, for one comparison.
QString wholeText(const RecordingGroup &group)
{
    return group.id + u'|' + text(group);
}

QStringList texts(const QList<RecordingGroup> &groups)
{
    QStringList list;
    for (const RecordingGroup &group : groups)
        list.append(wholeText(group));
    return list;
}

QStringList names(const QList<RecordingGroup> &groups)
{
    QStringList list;
    for (const RecordingGroup &group : groups)
        list.append(group.name);
    return list;
}
} // namespace

void StationGroupStoreTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>();
    m_database = std::make_unique<Database>(folder());
    m_store = std::make_unique<GroupStore>(*m_database);
    m_store->insert(Camera{QStringLiteral("Yard"), 2});
    m_store->insert(Camera{QStringLiteral("Gate"), 16});
}

void StationGroupStoreTest::cleanup()
{
    m_store.reset();
    m_database.reset();
    m_folder.reset();
}

int StationGroupStoreTest::rows(const QString &table)
{
    return m_database->value(QStringLiteral("SELECT count(*) FROM %1").arg(table)).toInt();
}

void StationGroupStoreTest::aGroupIsReadAsItWasWritten()
{
    m_store->insert(yard());
    QCOMPARE(texts(m_store->groups()), QStringList{wholeText(yard())});
    Database next(folder());
    const std::optional<RecordingGroup> group = GroupStore(next).group(yard().id);
    QVERIFY(group);
    QCOMPARE(wholeText(*group), wholeText(yard()));
    QVERIFY(!m_store->group(yard().name));
}

void StationGroupStoreTest::anEmptyGroupIsReadAsItWasWritten()
{
    RecordingGroup group;
    group.nodeIds.append(QString());
    m_store->insert(group);
    QCOMPARE(texts(m_store->groups()), QStringList{wholeText(group)});
}

void StationGroupStoreTest::groupsComeInTheOrderInWhichTheyWereMade()
{
    for (const char *name : {"z", "a", "m"})
        m_store->insert(named(QString::fromLatin1(name)));
    QCOMPARE(names(m_store->groups()), QString::fromLatin1("z a m").split(u' '));
}

void StationGroupStoreTest::aReplacedGroupKeepsItsPlace()
{
    m_store->insert(yard());
    m_store->insert(named(QStringLiteral("other")));
    RecordingGroup changed = named(QStringLiteral("changed"));
    changed.id = yard().id;
    changed.paths = {yard().paths.at(2), yard().paths.at(0)};
    changed.members = {{QStringLiteral("Gate"), 15, true, true}};
    changed.nodeIds = {QStringLiteral("n")};
    changed.reservedMinutes = 7;
    m_store->replace(changed);
    QCOMPARE(texts(m_store->groups()), (QStringList{wholeText(changed), wholeText(named(QStringLiteral("other")))}));
}

void StationGroupStoreTest::replacingAGroupThatIsGoneFails()
{
    QVERIFY_THROWS_EXCEPTION(DatabaseError, m_store->replace(yard()));
    QCOMPARE(rows(QStringLiteral("group_path")), 0);
}

void StationGroupStoreTest::aRemovedGroupLeavesNothing()
{
    m_store->insert(named(QStringLiteral("other")));
    m_store->insert(yard());
    m_store->remove(yard().id);
    QCOMPARE(names(m_store->groups()), QStringList{QStringLiteral("other")});
    for (const char *table : {"group_path", "group_member", "group_node"})
        QCOMPARE(rows(QString::fromLatin1(table)), 0);
    m_store->remove(yard().id);
}

void StationGroupStoreTest::camerasComeByName()
{
    m_store->insert(Camera{QStringLiteral("gate 10"), 1});
    m_store->insert(Camera{QStringLiteral("gate 9"), 1});
    m_store->removeCamera(QStringLiteral("Yard"));
    QStringList list;
    const QList<Camera> cameras = m_store->cameras();
    for (const Camera &camera : cameras)
        list.append(camera.name + u' ' + QString::number(camera.streams));
    QCOMPARE(list, (QStringList{QStringLiteral("Gate 16"), QStringLiteral("gate 9 1"), QStringLiteral("gate 10 1")}));
}

void StationGroupStoreTest::aMemberKeepsItsCamera()
{
    m_store->insert(yard());
    QVERIFY_THROWS_EXCEPTION(DatabaseError, m_store->removeCamera(QStringLiteral("Yard")));
    RecordingGroup group = named(QStringLiteral("other"));
    group.members = {{QStringLiteral("nobody"), 0, false, false}};
    QVERIFY_THROWS_EXCEPTION(DatabaseError, m_store->insert(group));
}

void StationGroupStoreTest::namesAndPathsAreUnique()
{
    m_store->insert(yard());
    RecordingGroup other = named(QStringLiteral("other"));
    other.name = yard().name;
    QVERIFY_THROWS_EXCEPTION(DatabaseError, m_store->insert(other));
    other = named(QStringLiteral("other"));
    other.folder = yard().folder;
    QVERIFY_THROWS_EXCEPTION(DatabaseError, m_store->insert(other));
    other = named(QStringLiteral("other"));
    other.paths = {yard().paths.at(0), yard().paths.at(0)};
    Transaction transaction(*m_database);
    QVERIFY_THROWS_EXCEPTION(DatabaseError, m_store->insert(other));
}

void StationGroupStoreTest::whatIsReadIsOfOneMoment()
{
    m_store->insert(yard());
    Database otherConnection(folder());
    {
        const Snapshot snapshot(*m_database);
        QCOMPARE(m_store->groups().size(), 1);
        GroupStore(otherConnection).insert(named(QStringLiteral("other")));
        QCOMPARE(m_store->groups().size(), 1);
    }
    QCOMPARE(m_store->groups().size(), 2);
    Transaction transaction(*m_database);
    m_store->remove(yard().id);
    QCOMPARE(m_store->groups().size(), 1);
    transaction.commit();
    QCOMPARE(m_store->groups().size(), 1);
}

/// Everything of a group changes again and again, in one transaction each, while it is read: no reading finds its name
/// of one moment and its lists of another.
void StationGroupStoreTest::groupsAreReadAtOneMoment()
{
    const auto version = [](const QString &word) {
        RecordingGroup group = named(QStringLiteral("group"));
        group.name = word;
        group.paths = {{u'/' + word, PathKind::Local, 0, false}};
        group.members = {{word, 0, false, false}};
        group.nodeIds = {word};
        return group;
    };
    const QStringList words{QStringLiteral("Gate"), QStringLiteral("Yard")};
    m_store->insert(version(words.at(0)));

    constexpr int changes = 400;
    auto writing = std::async(std::launch::async, [this, &version, &words] {
        Database database(folder());
        database.run(QStringLiteral("PRAGMA synchronous = OFF")); // a slow disk would leave the reader alone
        GroupStore store(database);
        for (int change = 1; change <= changes; ++change) {
            Transaction transaction(database);
            store.replace(version(words.at(change % 2)));
            transaction.commit();
        }
    });
    QStringList seen;
    while (writing.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        const RecordingGroup group = m_store->groups().value(0);
        QCOMPARE(group.paths.value(0).path, u'/' + group.name);
        QCOMPARE(group.members.value(0).camera, group.name);
        QCOMPARE(group.nodeIds, QStringList{group.name});
        if (!seen.contains(group.name))
            seen.append(group.name);
    }
    writing.get();
    QCOMPARE(seen.size(), 2);
}

QTEST_GUILESS_MAIN(StationGroupStoreTest)
#include "tst_station_group_store.moc"
