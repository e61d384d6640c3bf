#include "CommandKind.h"
#include "FakeVolumes.h"
#include "ServerVocabulary.h"
#include "Station.h"
#include "StationCall.h"
#include "StationVocabulary.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <algorithm>
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
    const StationCall call(station, name, data);
    call.reply();
    return call.parts();
}

/// What @p pattern captures in @p file of the source tree behind the text @p start, sorted.
QStringList wordsIn(const char *file, const QRegularExpression &pattern, const QString &start = {})
{
    QStringList words;
    QFile text(QDir(QStringLiteral(SOURCE_DIR)).filePath(QString::fromLatin1(file)));
    if (text.open(QIODevice::ReadOnly)) {
        const QString content = QString::fromUtf8(text.readAll());
        QRegularExpressionMatchIterator match =
            pattern.globalMatch(content, std::max(content.indexOf(start), qsizetype(0)));
        while (match.hasNext())
            words.append(match.next().captured(1));
    }
    words.sort();
    return words;
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
    void everyReturnCodeIsDocumented();
    void clientsKnowWhichCommandsAreEdits();
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
    Station station(StationSettings{{}, {}, std::make_unique<FakeVolumes>(twoVolumes)});
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
}

void StationTest::dataOfTheWrongTypeIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QVariant, data);
    Station station(StationSettings{{}, {}, std::make_unique<FakeVolumes>(twoVolumes)});
    const QList<StationReply> parts = replies(station, name, data);
    QCOMPARE(parts.size(), 1);
    QCOMPARE(parts.front().returnCode, QStringLiteral("BadRequest"));
    QVERIFY(!parts.front().data.isValid());
    QVERIFY(parts.front().finish);
}

void StationTest::volumesAreMapsWithSizesInKilobytes()
{
    Station station(StationSettings{{}, {}, std::make_unique<FakeVolumes>(twoVolumes)});
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
    Station station(StationSettings{{}, {}, std::make_unique<FakeVolumes>()});
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
    Station station(StationSettings{{}, {}, std::make_unique<ThrowingVolumes>()});
    const QList<StationReply> parts = replies(station, name, data);
    QCOMPARE(parts.size(), 1);
    QCOMPARE(parts.front().returnCode, QStringLiteral("InternalError"));
    QVERIFY(!parts.front().data.isValid());
    QVERIFY(parts.front().finish);
}

void StationTest::anAnswerThatThrowsIsNotGivenTwice()
{
    Station station(StationSettings{{}, {}, std::make_unique<FakeVolumes>(twoVolumes)});
    int count = 0;
    station.handle({QStringLiteral("getVolume"), {}}, [&count](const StationReply &) {
        ++count;
        throw std::runtime_error("the link is gone");
    });
    QCOMPARE(count, 1);
}

void StationTest::aMissingAnswerDoesNoHarm()
{
    Station station(StationSettings{{}, {}, std::make_unique<FakeVolumes>(twoVolumes)});
    station.handle({QStringLiteral("getVolume"), {}}, {});
    QCOMPARE(replies(station, QStringLiteral("getVolume")).size(), 1);
}

void StationTest::everyReturnCodeIsDocumented()
{
    static const QRegularExpression constant(
        QStringLiteral("\\w*ReturnCode::\\w+\\s*=\\s*QStringLiteral\\(\"(\\w+)\"\\)"));
    static const QRegularExpression tableRow(QStringLiteral("\\n\\| \"(0|[A-Z]\\w+)\" \\|"));
    QStringList codes =
        wordsIn("protocol/ServerVocabulary.cpp", constant) + wordsIn("protocol/StationVocabulary.cpp", constant);
    QVERIFY(codes.contains(ReturnCode::Success));
    QVERIFY(codes.contains(StationReturnCode::CannotCreate));
    QStringList documented = wordsIn("docs/station-protocol.md", tableRow, QStringLiteral("## Return codes"));
    codes.sort();
    documented.sort();
    QCOMPARE(documented, codes);
    QCOMPARE(QSet<QString>(codes.begin(), codes.end()).size(), codes.size());
}

/// What clients take for an edit, and what the station carries out once: neither may have one more.
void StationTest::clientsKnowWhichCommandsAreEdits()
{
    const Station station(StationSettings{{}, {}, std::make_unique<FakeVolumes>(twoVolumes)});
    QVERIFY(!station.editCommands().isEmpty());
    QStringList carriedOutOnce(station.editCommands().values());
    QStringList known(editCommands().values());
    carriedOutOnce.sort();
    known.sort();
    QCOMPARE(carriedOutOnce, known);
    for (const QString &command : std::as_const(known))
        QVERIFY2(isEdit(command), qPrintable(command));
    QVERIFY(!isEdit(ServerCommand::getVolume));
}

QTEST_GUILESS_MAIN(StationTest)
#include "tst_station.moc"
