#include "FakeVolumes.h"
#include "Station.h"
#include "StationProtocol.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <stdexcept>

namespace {
/// A source that fails as nothing should.
class ThrowingVolumes : public VolumeSource
{
public:
    QList<Volume> volumes() const override { throw std::runtime_error("no volumes today"); }
    std::optional<Volume> volumeHolding(const QString &) const override { throw 42; }
};

QList<StationReply> replies(Station &station, const QString &name, const QVariant &data = {})
{
    QList<StationReply> parts;
    station.handle({name, data}, [&parts](const StationReply &part) { parts.append(part); });
    return parts;
}

const QList<Volume> twoVolumes{
    {QStringLiteral("/"), QStringLiteral("System"), 1024 * 1024 + 1023, 1023, true, false},
    {QStringLiteral("/mnt/rec"), QStringLiteral("Aufnahmen Süd"), Q_INT64_C(20) << 40, Q_INT64_C(7) << 40, false, true},
};
} // namespace

/// The station as its link sees it: commands in, parts of an answer out.
class StationTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void anUnknownCommandIsRefused_data();
    void anUnknownCommandIsRefused();
    void dataOfTheWrongTypeIsRefused_data();
    void dataOfTheWrongTypeIsRefused();
    void volumesAreMapsWithSizesInKilobytes();
    void noVolumesAreAnEmptyList();
    void anExceptionBecomesAFailure_data();
    void anExceptionBecomesAFailure();
    void anAnswerThatThrowsIsNotGivenTwice();
    void aMissingAnswerDoesNoHarm();
    void everyReturnCodeIsAWordOfItsOwn();
};

void StationTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void StationTest::anUnknownCommandIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("not built") << QStringLiteral("formatVolume");
    QTest::newRow("other capitals") << QStringLiteral("GetVolume");
    QTest::newRow("a blank behind") << QStringLiteral("getVolume ");
    QTest::newRow("empty") << QString();
}

void StationTest::anUnknownCommandIsRefused()
{
    QFETCH(QString, name);
    Station station(std::make_unique<FakeVolumes>(twoVolumes));
    const QList<StationReply> parts = replies(station, name, QStringLiteral("/"));
    QCOMPARE(parts.size(), 1);
    QCOMPARE(parts.front().returnCode, QStringLiteral("UnknownCommand"));
    QVERIFY(!parts.front().data.isValid());
    QVERIFY(parts.front().finish);
}

void StationTest::dataOfTheWrongTypeIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("data");
    const QVariantMap map{{QStringLiteral("basePath"), QStringLiteral("/")}};
    QTest::newRow("getVolume, a map") << QStringLiteral("getVolume") << QVariant(map);
    QTest::newRow("getVolume, a number") << QStringLiteral("getVolume") << QVariant(1);
    for (const char *name : {"getServerDir", "createDirectory"}) {
        QTest::addRow("%s, nothing", name) << QString::fromLatin1(name) << QVariant();
        QTest::addRow("%s, a map", name) << QString::fromLatin1(name) << QVariant(map);
        QTest::addRow("%s, a number", name) << QString::fromLatin1(name) << QVariant(7);
        QTest::addRow("%s, bytes", name) << QString::fromLatin1(name) << QVariant(QByteArray("/"));
        QTest::addRow("%s, a list", name) << QString::fromLatin1(name) << QVariant(QStringList{QStringLiteral("/")});
    }
}

void StationTest::dataOfTheWrongTypeIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QVariant, data);
    Station station(std::make_unique<FakeVolumes>(twoVolumes));
    const QList<StationReply> parts = replies(station, name, data);
    QCOMPARE(parts.size(), 1);
    QCOMPARE(parts.front().returnCode, QStringLiteral("BadRequest"));
    QVERIFY(!parts.front().data.isValid());
    QVERIFY(parts.front().finish);
}

void StationTest::volumesAreMapsWithSizesInKilobytes()
{
    Station station(std::make_unique<FakeVolumes>(twoVolumes));
    const QList<StationReply> parts = replies(station, QStringLiteral("getVolume"));
    QCOMPARE(parts.size(), 1);
    QCOMPARE(parts.front().returnCode, QStringLiteral("0"));
    QVERIFY(parts.front().finish);

    const QVariantMap system{
        {QStringLiteral("volumePath"), QStringLiteral("/")},
        {QStringLiteral("volumeName"), QStringLiteral("System")},
        {QStringLiteral("volumeSize"), Q_INT64_C(1024)},
        {QStringLiteral("volumeAvailableSize"), Q_INT64_C(0)},
        {QStringLiteral("volumeIsSystem"), true},
    };
    const QVariantMap recordings{
        {QStringLiteral("volumePath"), QStringLiteral("/mnt/rec")},
        {QStringLiteral("volumeName"), QStringLiteral("Aufnahmen Süd")},
        {QStringLiteral("volumeSize"), Q_INT64_C(20) << 30},
        {QStringLiteral("volumeAvailableSize"), Q_INT64_C(7) << 30},
        {QStringLiteral("volumeIsSystem"), false},
    };
    QCOMPARE(parts.front().data, QVariant(QVariantList{system, recordings}));

    const QVariantMap first = parts.front().data.toList().value(0).toMap();
    QCOMPARE(first.value(QStringLiteral("volumeSize")).metaType(), QMetaType::fromType<qlonglong>());
    QCOMPARE(first.value(QStringLiteral("volumeAvailableSize")).metaType(), QMetaType::fromType<qlonglong>());
    QCOMPARE(first.value(QStringLiteral("volumeIsSystem")).metaType(), QMetaType::fromType<bool>());
}

void StationTest::noVolumesAreAnEmptyList()
{
    Station station(std::make_unique<FakeVolumes>());
    const QList<StationReply> parts = replies(station, QStringLiteral("getVolume"));
    QCOMPARE(parts.size(), 1);
    QCOMPARE(parts.front().returnCode, QStringLiteral("0"));
    QCOMPARE(parts.front().data, QVariant(QVariantList()));
}

void StationTest::anExceptionBecomesAFailure_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("data");
    QTest::newRow("getVolume") << QStringLiteral("getVolume") << QVariant();
    QTest::newRow("getServerDir") << QStringLiteral("getServerDir") << QVariant(QString());
    QTest::newRow("createDirectory") << QStringLiteral("createDirectory")
                                     << QVariant(QStringLiteral("/no-such-folder"));
}

void StationTest::anExceptionBecomesAFailure()
{
    QFETCH(QString, name);
    QFETCH(QVariant, data);
    Station station(std::make_unique<ThrowingVolumes>());
    const QList<StationReply> parts = replies(station, name, data);
    QCOMPARE(parts.size(), 1);
    QCOMPARE(parts.front().returnCode, QStringLiteral("InternalError"));
    QVERIFY(!parts.front().data.isValid());
    QVERIFY(parts.front().finish);
}

void StationTest::anAnswerThatThrowsIsNotGivenTwice()
{
    Station station(std::make_unique<FakeVolumes>(twoVolumes));
    int count = 0;
    station.handle({QStringLiteral("getVolume"), {}}, [&count](const StationReply &) {
        ++count;
        throw std::runtime_error("the link is gone");
    });
    QCOMPARE(count, 1);
}

void StationTest::aMissingAnswerDoesNoHarm()
{
    Station station(std::make_unique<FakeVolumes>(twoVolumes));
    station.handle({QStringLiteral("getVolume"), {}}, {});
    QCOMPARE(replies(station, QStringLiteral("getVolume")).size(), 1);
}

void StationTest::everyReturnCodeIsAWordOfItsOwn()
{
    const QStringList codes{
        StationReturnCode::Success,         StationReturnCode::UnknownCommand,
        StationReturnCode::BadRequest,      StationReturnCode::InternalError,
        StationReturnCode::PathNotAbsolute, StationReturnCode::DirectoryNotFound,
        StationReturnCode::NotADirectory,   StationReturnCode::NameRefused,
        StationReturnCode::EmptyName,       StationReturnCode::DirectoryNotReadable,
        StationReturnCode::DirectoryExists, StationReturnCode::FileExists,
        StationReturnCode::OutsideVolumes,  StationReturnCode::VolumeReadOnly,
        StationReturnCode::VolumeFull,      StationReturnCode::PermissionDenied,
        StationReturnCode::CannotCreate,
    };
    const QSet<QString> distinct(codes.begin(), codes.end());
    QCOMPARE(distinct.size(), codes.size());
    QVERIFY(!distinct.contains(QString()));
}

QTEST_GUILESS_MAIN(StationTest)
#include "tst_station.moc"
