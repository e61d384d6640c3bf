#include "GroupStation.h"
#include "StationVocabulary.h"
#include "store/Database.h"

#include <QDirIterator>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// "station.forecast" says of an edit what the edit itself says, and changes nothing.
class StationForecastTest : public QObject, private GroupStation
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { tearDown(); }

    void saysWhatTheEditSays_data();
    void saysWhatTheEditSays();
    void removalsAreJudgedOneAfterTheOther();
    void severalEditsAreJudgedOneAfterTheOther();
    void ofSeveralEditsRefusedOnesAreLeftOut();
    void aListOfEditsIsReadStrictly();
    void reservesNowAndThen();
    void groupsThatComeAndGo();
    void otherCommandsAreRefused_data();
    void otherCommandsAreRefused();
    void aStationWithoutDatabaseGetsNone();
    void aDatabaseThatCannotBeWritten();

private:
    /// Makes the data of an edit: the paths and groups are known only while the test runs.
    using Make = std::function<QVariant(StationForecastTest &)>;

    QVariantMap forecast(const QString &command, const QVariant &data)
    {
        const StationReply reply =
            m_station->ask(u"station.forecast"_s, QVariantMap{{u"command"_s, command}, {u"data"_s, data}});
        return reply.returnCode == u"0"_s ? reply.data.toMap() : QVariantMap{{u"refused"_s, reply.returnCode}};
    }
    /// "element|index|value|code|reason", one for each error.
    static QStringList texts(const QVariantList &errors)
    {
        QStringList list;
        for (const QVariant &error : errors) {
            const QVariantMap map = error.toMap();
            list.append(QStringList{map[u"element"_s].toString(), map[u"index"_s].toString(),
                                    map[u"value"_s].toString(), map[u"returnCode"_s].toString(),
                                    map[u"reason"_s].toString()}
                            .join(u'|'));
        }
        return list;
    }
    /// Every file below the test's folder with its bytes, but for the map that readers of the database share.
    QMap<QString, QByteArray> files() const
    {
        QMap<QString, QByteArray> found;
        QDirIterator entries(m_folder->path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            QFile file(entries.next());
            if (!file.fileName().endsWith(u"-shm"_s))
                found.insert(file.fileName(), file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
        }
        return found;
    }
    static QString volumeText(const QVariant &value)
    {
        const QVariantMap volume = value.toMap();
        return QStringList{volume[u"volumeName"_s].toString(), volume[u"size"_s].toString(),
                           volume[u"now"_s].toMap()[u"reserveSpace"_s].toString(),
                           volume[u"then"_s].toMap()[u"reserveSpace"_s].toString()}
            .join(u' ');
    }
    static QStringList volumeTexts(const QVariantMap &forecast)
    {
        QStringList list;
        for (const QVariant &volume : forecast[u"volumes"_s].toList())
            list.append(volumeText(volume));
        return list;
    }

    QString m_first; // ids of groups
    QString m_second;
};

void StationForecastTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    setUp();
    m_first = add(groupMap(u"First"_s, {pathMap(path(u"disk/a"_s), 2048)}, {memberMap(u"Yard"_s, 1)}, true, 2880));
    m_second = add(groupMap(u"Second"_s, {pathMap(path(u"disk/b"_s), 4096), pathMap(path(u"small/c"_s), 1024)}));
}

void StationForecastTest::saysWhatTheEditSays_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<Make>("make");
    QTest::addColumn<QStringList>("codes"); // of every part of the edit's reply

    using Test = StationForecastTest;
    const auto row = [](const char *name, const QString &command, const QStringList &codes, Make make) {
        QTest::newRow(name) << command << make << codes;
    };
    const QString complete = u"addRecordingGroupWithCompleteInfo"_s;
    const QString update = u"updateRecordingGroup"_s;
    const auto named = [](const QString &name, const QVariantMap &path) {
        QVariantMap map = path;
        map.insert(u"recordingGroupName"_s, name);
        return map;
    };
    row("group", u"addRecordingGroup"_s, {u"0"_s},
        [named](Test &test) { return named(u"Third"_s, pathMap(test.path(u"disk/a"_s), 1024)); });
    row("group of a name in use", u"addRecordingGroup"_s, {u"RecordingGroupNameInUse"_s},
        [named](Test &test) { return named(u"First"_s, pathMap(test.path(u"nowhere"_s), 1)); });
    row("complete group", complete, {u"0"_s}, [](Test &test) {
        return groupMap(u"Third"_s, {pathMap(test.path(u"small/c"_s), 1024)}, {memberMap(u"Gate"_s, 0)}, true, 60);
    });
    row("complete group, all wrong", complete, {u"EmptyRecordingGroupName"_s}, [](Test &test) {
        return groupMap(u" "_s,
                        {pathMap(test.path(u"nowhere"_s)), pathMap(u"/proc"_s), pathMap(test.path(u"disk/a"_s), 7),
                         pathMap(u"//nas/rec"_s, 0, false, 1)},
                        {memberMap(u"Gate"_s, 3), memberMap(u"Door"_s, 0)}, true, 0);
    });
    row("too much reserved", complete, {u"ReservedSpaceExceedsVolume"_s},
        [](Test &test) { return groupMap(u"Third"_s, {pathMap(test.path(u"disk/a"_s), 5120)}); });
    row("path", u"addPathToRecordingGroup"_s, {u"0"_s}, [](Test &test) {
        QVariantMap map = pathMap(test.path(u"disk/b"_s), 1024);
        map.insert(idMap(test.m_first));
        return map;
    });
    row("path of a group that is not there", u"addPathToRecordingGroup"_s, {u"RecordingGroupNotFound"_s},
        [](Test &test) {
            QVariantMap map = pathMap(test.path(u"disk/b"_s), 1024);
            map.insert(idMap(unknownId));
            return map;
        });
    row("update", update, {u"0"_s}, [](Test &test) {
        return updateMap(test.m_first,
                         {{u"updateAddPathList"_s, QVariantList{pathMap(test.path(u"small/c"_s), 1024)}},
                          {u"updateRmPathList"_s, QStringList{test.path(u"disk/a"_s)}},
                          {u"updateSetRecordingGroup"_s, QVariantMap{{u"recordingGroupName"_s, u"1st"_s}}}});
    });
    row("update that leaves no path", update, {u"LastPathOfGroup"_s}, [](Test &test) {
        return updateMap(test.m_first, {{u"updateRmPathList"_s, QStringList{test.path(u"disk/a"_s)}}});
    });
    row("update of a name in use", update, {u"PathNotInGroup"_s}, [](Test &test) {
        return updateMap(test.m_second,
                         {{u"updateSetRecordingGroup"_s, QVariantMap{{u"recordingGroupName"_s, u"First"_s}}},
                          {u"updateRmPathList"_s, QStringList{u"/elsewhere"_s}}});
    });
    row("removed paths", u"removePathFromRecordingGroup"_s, {u"0"_s, u"RecordingGroupNotFound"_s, u"LastPathOfGroup"_s},
        [](Test &test) {
            return QVariantMap{
                {u"recordingGroupIDList"_s, QStringList{test.m_second, unknownId, test.m_first}},
                {u"recordingGroupPathList"_s, QStringList{test.path(u"small/c"_s), u"/a"_s, test.path(u"disk/a"_s)}}};
        });
    row("removed groups", u"removeRecordingGroup"_s, {u"RecordingGroupNotFound"_s, u"0"_s}, [](Test &test) {
        return QVariantMap{{u"recordingGroupIDList"_s, QStringList{unknownId, test.m_first}}};
    });
    row("bad request", u"removeRecordingGroup"_s, {u"BadRequest"_s}, [](Test &) {
        return QVariantMap{{u"recordingGroupIDList"_s, QStringList()}};
    });
    row("no data", update, {u"BadRequest"_s}, [](Test &) { return QVariant(); });
}

void StationForecastTest::saysWhatTheEditSays()
{
    QFETCH(const QString, command);
    QFETCH(const Make, make);
    QFETCH(const QStringList, codes);
    const QVariant data = make(*this);
    const QString stateBefore = state();
    const QMap<QString, QByteArray> filesBefore = files();

    const QVariantMap told = forecast(command, data);
    QCOMPARE(files(), filesBefore);
    QCOMPARE(state(), stateBefore);

    const QList<StationReply> parts = m_station->parts(command, data);
    QStringList partCodes;
    QString firstRefusal = u"0"_s;
    for (const StationReply &part : parts) {
        partCodes.append(part.returnCode);
        if (firstRefusal == u"0"_s)
            firstRefusal = part.returnCode;
    }
    QCOMPARE(partCodes, codes); // what the row is about
    QCOMPARE(told[u"returnCode"_s].toString(), firstRefusal);

    const QVariantList errors = told[u"errors"_s].toList();
    const QVariant &answer = parts.constLast().data;
    if (parts.size() > 1) {
        QStringList toldCodes(parts.size(), u"0"_s);
        for (const QVariant &error : errors)
            toldCodes[error.toMap()[u"index"_s].toInt()] = error.toMap()[u"returnCode"_s].toString();
        QCOMPARE(toldCodes, partCodes);
    } else if (command == u"updateRecordingGroup"_s) {
        QCOMPARE(texts(errors), texts(answer.toList()));
    } else if (command == u"addRecordingGroupWithCompleteInfo"_s) {
        QCOMPARE(texts(errors), texts(answer.toMap()[u"errorAction"_s].toList()));
    } else if (firstRefusal == u"0"_s || firstRefusal == u"BadRequest"_s) {
        QCOMPARE(texts(errors), QStringList());
    } else {
        QCOMPARE(errors.constFirst().toMap()[u"returnCode"_s].toString(), firstRefusal);
    }
    const bool isAnythingDone = codes.contains(u"0"_s);
    QCOMPARE(told[u"groups"_s].toList().isEmpty(), !isAnythingDone);
    QCOMPARE(told[u"volumes"_s].toList().isEmpty(), !isAnythingDone);
    QCOMPARE(state() == stateBefore, !isAnythingDone); // the edit itself was carried out
}

void StationForecastTest::removalsAreJudgedOneAfterTheOther()
{
    const QString c = path(u"small/c"_s);
    const QVariantMap twice{{u"recordingGroupIDList"_s, QStringList{m_second, m_second}},
                            {u"recordingGroupPathList"_s, QStringList{c, c}}};
    const QVariantMap told = forecast(u"removePathFromRecordingGroup"_s, twice);
    QCOMPARE(told[u"returnCode"_s], u"PathNotInGroup"_s);
    QCOMPARE(texts(told[u"errors"_s].toList()), QStringList{u"recordingGroupPathList|1|%1|PathNotInGroup|"_s.arg(c)});
    QCOMPARE(volumeTexts(told), QStringList{u"Small 2147483648 1024 0"_s});
}

void StationForecastTest::severalEditsAreJudgedOneAfterTheOther()
{
    const auto reserving = [this](const QString &id, qint64 megabytes) {
        return updateMap(
            id,
            {{u"updateAddPathList"_s, QVariantList{pathMap(path(u"disk/new"_s), megabytes)}},
             {u"updateSetRecordingGroup"_s,
              QVariantMap{{u"recordingGroupReservedTimeEnabled"_s, true}, {u"recordingGroupReservedTime"_s, 60}}}});
    };
    QVERIFY(QDir().mkpath(path(u"disk/new"_s)));
    const QString update = u"updateRecordingGroup"_s;
    const QMap<QString, QByteArray> before = files();
    const QVariantMap told = forecast(update, QVariantList{reserving(m_first, 1024), reserving(m_second, 2048)});
    QCOMPARE(files(), before);
    QCOMPARE(told[u"returnCode"_s], u"0"_s);
    QCOMPARE(volumeTexts(told), QStringList{u"Disk 10737418240 6144 9216"_s});
    QStringList groups;
    for (const QVariant &group : told[u"groups"_s].toList()) {
        const QVariantMap then = group.toMap()[u"then"_s].toMap();
        groups.append(then[u"recordingGroupName"_s].toString() + u' '
                      + then[u"recordingGroupReservedTime"_s].toString());
    }
    QCOMPARE(groups, (QStringList{u"First 60"_s, u"Second 60"_s}));

    const QVariantMap tooMuch = forecast(update, QVariantList{reserving(m_first, 3072), reserving(m_second, 2048)});
    QCOMPARE(tooMuch[u"returnCode"_s], u"ReservedSpaceExceedsVolume"_s);
    QCOMPARE(tooMuch[u"errors"_s].toList().size(), 1);
    QCOMPARE(tooMuch[u"errors"_s].toList().constFirst().toMap()[u"index"_s].toInt(), 1);
    QCOMPARE(volumeTexts(tooMuch), QStringList{u"Disk 10737418240 6144 9216"_s});
}

void StationForecastTest::ofSeveralEditsRefusedOnesAreLeftOut()
{
    const auto renamed = [](const QString &id, const QString &name) {
        return updateMap(id, {{u"updateSetRecordingGroup"_s, QVariantMap{{u"recordingGroupName"_s, name}}}});
    };
    const QVariantMap told =
        forecast(u"updateRecordingGroup"_s, QVariantList{renamed(unknownId, u"A"_s), renamed(m_second, u"B"_s)});
    QCOMPARE(told[u"returnCode"_s], u"RecordingGroupNotFound"_s);
    QCOMPARE(texts(told[u"errors"_s].toList()),
             QStringList{u"recordingGroupID|0|%1|RecordingGroupNotFound|"_s.arg(unknownId)});
    QCOMPARE(told[u"groups"_s].toList().size(), 1);
    QCOMPARE(told[u"groups"_s].toList().constFirst().toMap()[u"recordingGroupID"_s], m_second);
    const QVariantMap alone = forecast(u"updateRecordingGroup"_s, QVariantList{renamed(m_first, u"Second"_s)});
    QCOMPARE(texts(alone[u"errors"_s].toList()),
             QStringList{u"recordingGroupName|0|Second|RecordingGroupNameInUse|"_s});
}

void StationForecastTest::aListOfEditsIsReadStrictly()
{
    const QString update = u"updateRecordingGroup"_s;
    QCOMPARE(forecast(update, QVariantList())[u"returnCode"_s], u"BadRequest"_s);
    QCOMPARE(forecast(update, QVariantList{updateMap(m_first, {}), 7})[u"returnCode"_s], u"BadRequest"_s);
    QCOMPARE(forecast(u"GetNasDir"_s, QVariantList{updateMap(m_first, {})})[u"refused"_s], u"ForecastRefused"_s);
}

void StationForecastTest::reservesNowAndThen()
{
    const QVariantMap more =
        updateMap(m_first,
                  {{u"updateSetPathList"_s,
                    QVariantList{QVariantMap{{u"path"_s, path(u"disk/a"_s)}, {u"reserveSpace"_s, 6144}}}}});
    QCOMPARE(volumeTexts(forecast(u"updateRecordingGroup"_s, more)), QStringList{u"Disk 10737418240 6144 10240"_s});
    const QVariantMap moved = updateMap(m_second,
                                        {{u"updateRmPathList"_s, QStringList{path(u"small/c"_s)}},
                                         {u"updateAddPathList"_s, QVariantList{pathMap(path(u"disk/a"_s), 1024)}}});
    QCOMPARE(volumeTexts(forecast(u"updateRecordingGroup"_s, moved)),
             (QStringList{u"Disk 10737418240 6144 7168"_s, u"Small 2147483648 1024 0"_s}));
    const QVariantMap renamed =
        updateMap(m_second, {{u"updateSetRecordingGroup"_s, QVariantMap{{u"recordingGroupName"_s, u"2nd"_s}}}});
    QCOMPARE(volumeTexts(forecast(u"updateRecordingGroup"_s, renamed)), QStringList());
}

void StationForecastTest::groupsThatComeAndGo()
{
    const QVariantList made = forecast(u"addRecordingGroupWithCompleteInfo"_s,
                                       groupMap(u"Third"_s, {pathMap(path(u"small/c"_s))}, {}, true, 60))[u"groups"_s]
                                  .toList();
    QCOMPARE(made.size(), 1);
    const QVariantMap third = made.constFirst().toMap();
    QCOMPARE(third[u"recordingGroupID"_s], u""_s);
    QVERIFY(!third.contains(u"now"_s));
    const QVariantMap then = third[u"then"_s].toMap();
    QCOMPARE(then[u"recordingGroupName"_s], u"Third"_s);
    QCOMPARE(then[u"recordingGroupReservedTime"_s].toInt(), 60);
    for (const QString &key : {u"recordedDays"_s, u"remainingDays"_s, u"bytesPerDay"_s})
        QCOMPARE(then[key].toLongLong(), -1);

    const QVariantList removed =
        forecast(u"removeRecordingGroup"_s, QVariantMap{{u"recordingGroupIDList"_s, QStringList{m_first}}})[u"groups"_s]
            .toList();
    QCOMPARE(removed.size(), 1);
    const QVariantMap first = removed.constFirst().toMap();
    QCOMPARE(first[u"recordingGroupID"_s], m_first);
    QVERIFY(!first.contains(u"then"_s));
    QCOMPARE(first[u"now"_s].toMap()[u"recordingGroupReservedTime"_s].toInt(), 2880);
}

void StationForecastTest::otherCommandsAreRefused_data()
{
    QTest::addColumn<QVariant>("data");
    QTest::addColumn<QString>("code");
    const auto of = [](const QVariant &command) {
        return QVariant(QVariantMap{{u"command"_s, command}, {u"data"_s, QVariantMap()}});
    };
    QTest::newRow("listing") << of(u"getRecordingGroup"_s) << u"ForecastRefused"_s;
    QTest::newRow("camera") << of(u"station.addCamera"_s) << u"ForecastRefused"_s;
    QTest::newRow("unknown") << of(u"addrecordinggroup"_s) << u"ForecastRefused"_s;
    QTest::newRow("number") << of(7) << u"BadRequest"_s;
    QTest::newRow("no command") << QVariant(QVariantMap()) << u"BadRequest"_s;
    QTest::newRow("no data") << QVariant() << u"BadRequest"_s;
}

void StationForecastTest::otherCommandsAreRefused()
{
    QFETCH(const QVariant, data);
    QFETCH(const QString, code);
    QCOMPARE(m_station->text(u"station.forecast"_s, data), code + u" invalid"_s);
}

void StationForecastTest::aStationWithoutDatabaseGetsNone()
{
    StationClient other(path(u"other"_s), {});
    const StationReply reply =
        other.ask(u"station.forecast"_s,
                  QVariantMap{{u"command"_s, u"removeRecordingGroup"_s},
                              {u"data"_s, QVariantMap{{u"recordingGroupIDList"_s, QStringList{unknownId}}}}});
    QCOMPARE(reply.data.toMap()[u"returnCode"_s], u"RecordingGroupNotFound"_s);
    QVERIFY(!QDir(path(u"other"_s)).exists());
}

/// Every edit would be refused, those that are wrong for what is wrong with them.
void StationForecastTest::aDatabaseThatCannotBeWritten()
{
    const auto removal = [](const QStringList &ids) { return QVariantMap{{u"recordingGroupIDList"_s, ids}}; };
    const auto check = [&](const QVariantMap &data) {
        const QVariantMap told = forecast(u"removeRecordingGroup"_s, data);
        QCOMPARE(told[u"groups"_s].toList(), QVariantList());
        const QList<StationReply> parts = m_station->parts(u"removeRecordingGroup"_s, data);
        QCOMPARE(told[u"returnCode"_s].toString(), parts.constFirst().returnCode);
        QCOMPARE(parts.constFirst().returnCode, u"DatabaseDamaged"_s);
    };
    m_station.reset();
    {
        const int page = Database(path(u"data"_s))
                             .value(u"SELECT rootpage FROM sqlite_schema WHERE name = 'recorded_day'"_s)
                             .toInt();
        QFile file(path(u"data/station.db"_s));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.seek((page - 1) * 4096));
        file.write(QByteArray(4096, 'x')); // damage: it is read, and not written any more
    }
    QTest::failOnWarning(QRegularExpression(u"(?!)"_s));
    m_station = makeStation();
    QCOMPARE(m_station->ask(u"getRecordingGroup"_s).returnCode, u"0"_s);
    check(removal({m_first}));
}

QTEST_GUILESS_MAIN(StationForecastTest)
#include "tst_station_forecast.moc"
