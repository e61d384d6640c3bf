#include "EditSequence.h"
#include "GroupText.h"
#include "groups/GroupStore.h"
#include "store/Database.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {
constexpr int patience = 60000; // milliseconds

/// Everything of the groups but their ids, a line for each.
QStringList texts(const QList<RecordingGroup> &groups)
{
    QStringList lines;
    for (const RecordingGroup &group : groups)
        lines.append(text(group));
    return lines;
}
} // namespace

/// A station that is killed in the middle of its work: what it acknowledged is there, and nothing is half done.
class StationCrashTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void aKilledStationForgetsNothing();
    void anEditThatWasNotAcknowledgedIsWhole_data();
    void anEditThatWasNotAcknowledgedIsWhole();

private:
    QString data() const { return m_folder->filePath(QStringLiteral("data")); }
    QString volume() const { return m_folder->filePath(QStringLiteral("volume")); }
    int runUntilKilled(int firstEdit, int lastEdit, qint64 microseconds);
    QStringList stored() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void StationCrashTest::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>();
    for (int number = 0; number < EditSequence::folders; ++number)
        QVERIFY(QDir().mkpath(EditSequence::folder(volume(), number)));
}

/// Lets a station edit from @p firstEdit on. Kills it @p microseconds after it acknowledged @p lastEdit; that may be in
/// the middle of one of the next. The number of edits that are acknowledged then, -1 when it ended by itself too soon.
int StationCrashTest::runUntilKilled(int firstEdit, int lastEdit, qint64 microseconds)
{
    QProcess station;
    station.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    station.start(QStringLiteral(EDITING_STATION), {data(), volume(), QString::number(firstEdit)});
    QByteArray output;
    int acknowledged = firstEdit;
    const auto read = [&station, &output, &acknowledged] {
        output += station.readAllStandardOutput();
        const QByteArray lines = output.left(output.lastIndexOf('\n'));
        if (!lines.isEmpty())
            acknowledged = lines.mid(lines.lastIndexOf('\n') + 1).toInt() + 1;
    };
    while (acknowledged <= lastEdit) {
        if (!station.waitForReadyRead(patience))
            break;
        read();
    }
    QElapsedTimer timer;
    timer.start();
    while (timer.nsecsElapsed() < microseconds * 1000) { } // a moment that differs from run to run
    station.kill();
    const bool isOver = station.waitForFinished(patience);
    read();
    const bool isAsMeant = lastEdit < EditSequence::length - 1 ? station.exitStatus() == QProcess::CrashExit
                                                               : acknowledged == EditSequence::length;
    return isOver && isAsMeant ? acknowledged : -1;
}

QStringList StationCrashTest::stored() const
{
    Database database(data());
    const QString check = database.value(QStringLiteral("PRAGMA integrity_check")).toString();
    if (check != QStringLiteral("ok"))
        return {QStringLiteral("damaged: ") + check};
    if (database.value(QStringLiteral("PRAGMA foreign_key_check")).isValid())
        return {QStringLiteral("a row without its group or camera")};
    return texts(GroupStore(database).groups());
}

void StationCrashTest::aKilledStationForgetsNothing()
{
    constexpr int kills = 25;
    int done = 0;
    int unacknowledged = 0;
    for (int kill = 1; kill <= kills; ++kill) {
        const int last = EditSequence::length * kill / kills - 1;
        const int acknowledged = runUntilKilled(done, last, kill * 7919 % 25000);
        QVERIFY2(acknowledged > last, qPrintable(QStringLiteral("%1, %2").arg(acknowledged).arg(last)));
        const QStringList found = stored();
        // The edit that it was at is there or not, as a whole.
        const bool isNextThere = found != texts(EditSequence::groupsAfter(acknowledged, volume()));
        done = acknowledged + isNextThere;
        unacknowledged += isNextThere;
        QCOMPARE(found, texts(EditSequence::groupsAfter(done, volume())));
    }
    QCOMPARE(done, EditSequence::length);
    qInfo("%d edits were done and not acknowledged", unacknowledged);
    for (int number = 0; number < EditSequence::folders; ++number) {
        const QDir folder(EditSequence::folder(volume(), number));
        QCOMPARE(folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList());
    }
}

void StationCrashTest::anEditThatWasNotAcknowledgedIsWhole_data()
{
    QTest::addColumn<int>("edit");
    QTest::newRow("a group was added") << 40;
    QTest::newRow("a group was updated") << 41;
    QTest::newRow("a path was added") << 42;
    QTest::newRow("a group was renamed") << 43;
    QTest::newRow("a group was removed") << 47;
}

/// The moment between an edit and its answer, which a kill from outside seldom meets.
void StationCrashTest::anEditThatWasNotAcknowledgedIsWhole()
{
    QFETCH(int, edit);
    QProcess station;
    station.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    station.start(QStringLiteral(EDITING_STATION), {data(), volume(), QStringLiteral("0"), QString::number(edit)});
    QVERIFY(station.waitForFinished(patience));
    QCOMPARE(station.exitStatus(), QProcess::CrashExit);
    QCOMPARE(station.readAllStandardOutput().trimmed().split('\n').back().toInt(), edit - 1);
    QCOMPARE(stored(), texts(EditSequence::groupsAfter(edit + 1, volume())));
    QVERIFY(runUntilKilled(edit + 1, edit + 10, 0) > edit + 10); // and the next one goes on from there
}

QTEST_GUILESS_MAIN(StationCrashTest)
#include "tst_station_crash.moc"
