#include "FakeVolumes.h"
#include "StationData.h"
#include "usage/RecordingPlaces.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
/// Counts how often it is asked.
class CountedVolumes : public FakeVolumes
{
public:
    using FakeVolumes::FakeVolumes;

    std::optional<Volume> volumeHolding(const QString &path) const override
    {
        ++m_single;
        return FakeVolumes::volumeHolding(path);
    }
    QList<std::optional<Volume>> volumesHolding(const QStringList &paths) const override
    {
        ++m_questions;
        QList<std::optional<Volume>> volumes;
        for (const QString &path : paths)
            volumes.append(FakeVolumes::volumeHolding(path));
        return volumes;
    }

    mutable int m_single = 0;
    mutable int m_questions = 0;
};
} // namespace

/// Where the places of recordings are, as one look at all of them finds it.
class RecordingPlacesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aLookAsksTheVolumesOnce();
    void eachPlaceHasItsOwnState();
    void theVolumeIsRemembered();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    void add(const QString &name);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StationData> m_data;
    QList<RecordingGroup> m_groups;
};

void RecordingPlacesTest::init()
{
    m_data.reset();
    m_folder = std::make_unique<QTemporaryDir>(QDir(QDir::temp().canonicalPath()).filePath(u"places-XXXXXX"_s));
    m_data = std::make_unique<StationData>(path(u"data"_s));
    m_groups.clear();
    for (const QString &disk : {u"a"_s, u"b"_s})
        QVERIFY(QDir().mkpath(path(disk)));
}

/// A group with a path of its own, which is made.
void RecordingPlacesTest::add(const QString &name)
{
    RecordingGroup group;
    group.id = group.folder = group.name = name;
    group.paths.append({path(name)});
    m_groups.append(group);
    QVERIFY(QDir().mkpath(path(name)));
}

void RecordingPlacesTest::aLookAsksTheVolumesOnce()
{
    for (int i = 0; i < 100; ++i)
        add(u"a/%1"_s.arg(i));
    const CountedVolumes volumes({{path(u"a"_s), u"A"_s, 4096, 2048}});
    RecordingPlaces places(*m_data, volumes);
    places.update(m_groups, {});
    QCOMPARE(places.look().size(), 100);
    QCOMPARE(volumes.m_questions, 1);
    QCOMPARE(volumes.m_single, 0);

    QVERIFY(QDir(path(u"a"_s)).removeRecursively()); // each of the volume's places is asked for as one
    QVERIFY(QDir().mkpath(path(u"a"_s)));
    const QHash<qint64, PlaceState> gone = places.look();
    QCOMPARE(volumes.m_questions, 2);
    QCOMPARE(volumes.m_single, 1);
    for (const PlaceState &state : gone)
        QVERIFY(state.storage == UsagePlace::Storage::Gone && state.isVolumeThere);
}

void RecordingPlacesTest::eachPlaceHasItsOwnState()
{
    for (const QString &name : {u"a/one"_s, u"b/two"_s, u"a/three"_s, u"elsewhere"_s})
        add(name);
    QVERIFY(QDir().rmdir(path(u"a/three"_s)));
    const FakeVolumes volumes({{path(u"a"_s), u"A"_s, 4096, 2048}, {path(u"b"_s), u"B"_s, 8192, 1024, false, true}});
    RecordingPlaces places(*m_data, volumes);
    places.update(m_groups, {});
    const QHash<qint64, PlaceState> states = places.look();
    QStringList told;
    for (const RecordingPlace &place : places.places()) {
        const PlaceState state = states.value(place.number);
        const bool isPresent = state.storage == UsagePlace::Storage::Present;
        told.append(u"%1 %2 %3 %4"_s.arg(place.groupId, isPresent ? u"present"_s : u"gone"_s, state.volume.name)
                        .arg(state.writeError));
    }
    told.sort();
    QCOMPARE(told,
             (QStringList{u"a/one present A 0"_s, u"a/three gone  0"_s, u"b/two present B %1"_s.arg(EROFS),
                          u"elsewhere gone  0"_s}));
}

void RecordingPlacesTest::theVolumeIsRemembered()
{
    add(u"a/one"_s);
    add(u"a/two"_s);
    const FakeVolumes disk({{path(u"a"_s), u"A"_s, 4096, 2048}});
    {
        RecordingPlaces places(*m_data, disk);
        places.update(m_groups, {});
        places.look();
    }
    const FakeVolumes unmounted({{path(u""_s), u"Root"_s, 4096, 2048}}); // the folders are there, on another volume
    RecordingPlaces places(*m_data, unmounted);
    places.update(m_groups, {});
    const QHash<qint64, PlaceState> states = places.look();
    QCOMPARE(states.size(), 2);
    for (const PlaceState &state : states) {
        QCOMPARE(state.storage, UsagePlace::Storage::Gone);
        QCOMPARE(state.volume.name, u"A"_s);
        QVERIFY(!state.isVolumeThere);
    }
}

QTEST_GUILESS_MAIN(RecordingPlacesTest)
#include "tst_recording_places.moc"
