#include "JsonShape.h"
#include "ToolRun.h"
#include "VolumeFolder.h"
#include "store/Database.h"

#include <QDir>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
constexpr qint64 megabyte = 1024 * 1024;

/// A small disk of the test's own, mounted on a folder; only root can make one.
class LoopDisk
{
public:
    LoopDisk(const QString &image, const QString &folder)
        : m_folder(folder)
    {
        QFile file(image);
        m_isMounted = file.open(QIODevice::WriteOnly) && file.resize(64 * megabyte)
            && run({"-q", image}, {}, u"mkfs.ext4"_s).exitCode == 0
            && run({"-o", "loop", image, folder}, {}, u"mount"_s).exitCode == 0;
    }
    ~LoopDisk()
    {
        if (m_isMounted)
            run({m_folder}, {}, u"umount"_s);
    }
    Q_DISABLE_COPY_MOVE(LoopDisk)

    bool isMounted() const { return m_isMounted; }

private:
    QString m_folder;
    bool m_isMounted = false;
};

/// What df says of the volume that holds a path; bytes.
struct DiskFree
{
    explicit DiskFree(const QString &path)
    {
        const Run df = run({"--block-size=1", "--output=size,used,avail,target", path}, {}, u"df"_s);
        const QStringList values = df.outputLines().value(1).simplified().split(u' ');
        size = values.value(0).toLongLong();
        used = values.value(1).toLongLong();
        available = values.value(2).toLongLong();
        volume = values.value(3);
    }

    QString volume;
    qint64 size = 0;
    qint64 used = 0;
    qint64 available = 0;
};

/// The sizes of all files below a folder together, as du says them.
qint64 diskUsage(const QString &folder)
{
    const Run du =
        run({folder, "-type", "f", "-exec", "du", "--apparent-size", "--block-size=1", "{}", "+"}, {}, u"find"_s);
    qint64 sum = 0;
    for (const QString &line : du.outputLines())
        sum += line.section(u'\t', 0, 0).toLongLong();
    return sum;
}
} // namespace

/// What the volumes hold, and what an edit would do, by hand.
class TestRecordingctlStorage : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void volumesOfASampleSite();
    void figuresAreThoseOfDfAndDu_data();
    void figuresAreThoseOfDfAndDu();
    void lostVolumeIsTold();
    void folderThatIsGoneIsUnknown();
    void forecastSaysWhatTheEditDoes();
    void forecastOfARefusedEdit_data();
    void forecastOfARefusedEdit();
    void forecastOfAnEditRefusedInPart();
    void forecastIsForEditsOnly();

private:
    Run ctl(const QStringList &arguments) const { return run(arguments + QStringList{"--data", folder("station")}); }
    QString folder(const QString &name) const { return m_folder->filePath(name); }
    /// A file with so much in it; @p name from the test's folder.
    void record(const QString &name, qint64 bytes) const;
    /// 0 for null.
    static qint64 number(const QJsonValue &volume, const char *key) { return volume[QLatin1String(key)].toInteger(); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestRecordingctlStorage::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    m_folder = std::make_unique<QTemporaryDir>(onAVolume("storage-XXXXXX"));
    QVERIFY(m_folder->isValid());
    for (const QString &name : {u"a"_s, u"b"_s})
        QVERIFY(QDir().mkpath(folder(name)));
}

void TestRecordingctlStorage::volumesOfASampleSite()
{
    QCOMPARE(ctl({"site-sample"}).exitCode, 0);
    const Run text = ctl({"storage"});
    QCOMPARE(text.errors, QString());
    QCOMPARE(text.exitCode, 0);
    for (const char *part : {"Parking ", "Entrances ", "Warehouse ", "(other files)", "(free)", "(size)"})
        QVERIFY2(text.output.contains(QChar(u'\n') + QLatin1String(part)), part);

    const QJsonArray volumes = ctl({"storage", "--json"}).reply()["data"].toArray();
    int groups = 0;
    for (const QJsonValue &volume : volumes) {
        qint64 sum = number(volume, "availableBytes") + number(volume, "reservedForRootBytes")
            + number(volume, "otherBytes") - number(volume, "excessBytes");
        for (const QJsonValue &group : volume["groups"].toArray()) {
            sum += number(group, "recordedBytes");
            ++groups;
        }
        QCOMPARE(sum, number(volume, "sizeBytes"));
    }
    QCOMPARE(groups, 3);
}

void TestRecordingctlStorage::record(const QString &name, qint64 bytes) const
{
    QVERIFY(QDir().mkpath(QFileInfo(folder(name)).path()));
    QFile file(folder(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(QByteArray(bytes, 'x')), bytes);
}

void TestRecordingctlStorage::figuresAreThoseOfDfAndDu_data()
{
    QTest::addColumn<bool>("ownDisks");
    QTest::newRow("folders of this machine") << false;
    QTest::newRow("disks") << true;
}

/// Two groups, one of them on both folders; what it says of a volume adds up to what df says, and its recordings to
/// what du says. Where others write to the volume meanwhile, the free space may differ by a hundredth.
void TestRecordingctlStorage::figuresAreThoseOfDfAndDu()
{
    QFETCH(const bool, ownDisks);
    std::vector<std::unique_ptr<LoopDisk>> disks;
    for (const QString &name : {u"a"_s, u"b"_s}) {
        if (!ownDisks)
            break;
        disks.push_back(std::make_unique<LoopDisk>(folder(name + u".image"_s), folder(name)));
        if (!disks.back()->isMounted())
            QSKIP("Only root can mount a disk.");
    }
    QCOMPARE(ctl({"group-add", "Yard", "--path", folder("a"), "--path", folder("b"), "--reserve", "0"}).exitCode, 0);
    QCOMPARE(ctl({"group-add", "Gate", "--path", folder("b"), "--reserve", "0"}).exitCode, 0);
    record("a/Yard/North/2026-03-01/1.rec", 3 * megabyte);
    record("a/Yard/North/2026-03-02/1.rec", 2 * megabyte + 17);
    record("b/Yard/North/2026-03-02/1.rec", megabyte);
    record("b/Gate/South/2026-03-02/1.rec", 5 * megabyte + 1);
    record("b/notes.txt", megabyte / 2);
    QCOMPARE(run({}, {}, u"sync"_s).exitCode, 0);

    Run told;
    QTRY_VERIFY_WITH_TIMEOUT((told = ctl({"storage", "--json"})).exitCode == 0, 60'000);
    const QJsonArray volumes = told.reply()["data"].toArray();
    qint64 recorded = 0;
    int compared = 0;
    for (const QJsonValue &volume : volumes) {
        const QJsonArray groups = volume["groups"].toArray();
        for (const QJsonValue &group : groups) {
            qint64 files = 0;
            for (const QJsonValue &path : group["paths"].toArray())
                files += diskUsage(path.toString() + u'/' + group["name"].toString());
            QCOMPARE(number(group, "recordedBytes"), files);
            recorded += files;
        }
        if (groups.isEmpty())
            continue;
        ++compared;
        const DiskFree df(groups[0]["paths"][0].toString());
        const qint64 slack = ownDisks ? 0 : df.size / 100;
        const QString path = volume["path"].toString();
        if (path != df.volume) // a part of that volume is mounted a second time
            QCOMPARE(QStorageInfo(path).device(), QStorageInfo(df.volume).device());
        QCOMPARE(number(volume, "sizeBytes"), df.size);
        const qint64 available = number(volume, "availableBytes");
        const qint64 used = df.size - available - number(volume, "reservedForRootBytes");
        QVERIFY2(std::abs(available - df.available) <= slack,
                 qPrintable(u"available: %1, df: %2"_s.arg(available).arg(df.available)));
        QVERIFY2(std::abs(used - df.used) <= slack, qPrintable(u"used: %1, df: %2"_s.arg(used).arg(df.used)));
    }
    QCOMPARE(compared, ownDisks ? 2 : 1);
    QCOMPARE(recorded, 11 * megabyte + 18);
}

void TestRecordingctlStorage::lostVolumeIsTold()
{
    QCOMPARE(ctl({"group-add", "Yard", "--path", folder("a"), "--reserve", "0"}).exitCode, 0);
    QCOMPARE(ctl({"storage"}).exitCode, 0); // the path learns its volume
    {
        Database database(folder("station"));
        database.run(
            u"UPDATE recording_place SET volume_path = '/mnt/lost', volume_name = 'Lost'"_s); // as if it lay there
    }
    const Run lost = ctl({"storage"});
    QCOMPARE(lost.exitCode, 1);
    QVERIFY2(lost.output.contains(QRegularExpression("\nLost \\(/mnt/lost\\): local, gone since \\d{4}-.*\n")),
             qPrintable(lost.output));
    QVERIFY2(lost.errors.startsWith("recordingctl: the volume Lost (/mnt/lost) is gone since "),
             qPrintable(lost.errors));

    const Run reply = ctl({"storage", "--json"});
    QCOMPARE(reply.exitCode, 1);
    QCOMPARE(reply.reply()["returnCode"], QJsonValue("VolumeGone"));
    QCOMPARE(reply.errors, QStringLiteral("recordingctl: %1\n").arg(reply.reply()["error"]["message"].toString()));
    const QJsonArray volumes = reply.reply()["data"].toArray();
    const auto volume = std::find_if(volumes.begin(), volumes.end(),
                                     [](const QJsonValue &value) { return value["path"] == QJsonValue("/mnt/lost"); });
    QVERIFY2(volume != volumes.end(), qPrintable(reply.output));
    const QJsonValue found = *volume;
    QCOMPARE(found["state"], QJsonValue("gone"));
    QCOMPARE(typeMismatch(found["since"], "time"), QString());
    QVERIFY(found["sizeBytes"].isNull() && found["availableBytes"].isNull() && found["otherBytes"].isNull());
    QCOMPARE(placeholder(reply.json()), QString());
}

void TestRecordingctlStorage::folderThatIsGoneIsUnknown()
{
    QCOMPARE(ctl({"group-add", "Yard", "--path", folder("a"), "--reserve", "0"}).exitCode, 0);
    QCOMPARE(ctl({"storage"}).exitCode, 0);
    QVERIFY(QDir().rename(folder("a"), folder("away")));
    const Run gone = ctl({"storage"});
    QCOMPARE(gone.exitCode, 3);
    QVERIFY2(gone.errors.startsWith("recordingctl: unknown: the recordings on "), qPrintable(gone.errors));
    QVERIFY2(gone.output.contains(QRegularExpression("\nYard +unknown +unknown")), qPrintable(gone.output));

    const Run reply = ctl({"storage", "--json"});
    QCOMPARE(reply.exitCode, 3);
    QCOMPARE(reply.json().keys(), (QStringList{"command", "data", "returnCode", "unknown"}));
    QCOMPARE(reply.reply()["returnCode"], QJsonValue("NotKnownYet"));
    const QString mismatch = shapeMismatch(
        reply.reply()["unknown"],
        QJsonArray{QJsonObject{{"kind", "text"}, {"subject", "text"}, {"text", "text"}, {"since", "time?"}}});
    QVERIFY2(mismatch.isEmpty(), qPrintable(reply.output + mismatch));
    QCOMPARE(reply.reply()["unknown"][0]["kind"], QJsonValue("RecordingsNotCounted"));
    QCOMPARE(placeholder(reply.json()), QString());
}

void TestRecordingctlStorage::forecastSaysWhatTheEditDoes()
{
    QCOMPARE(ctl({"group-add", "Yard", "--path", folder("a"), "--reserve", "1024", "--reserved-time", "1440"}).exitCode,
             0);
    const QString before = ctl({"groups"}).output;
    const QList<QStringList> edits{{"group-add", "Gate", "--path", folder("b"), "--reserve", "2048"},
                                   {"group-path-add", "Yard", folder("b"), "--reserve", "2048"},
                                   {"group-path-set", "Yard", folder("a"), "--reserve", "3072"},
                                   {"group-update", "Yard", "--name", "Gate", "--reserved-time", "2880"},
                                   {"group-path-remove", "Yard", folder("a")},
                                   {"group-remove", "Yard"}};
    const QStringList groups{"- -> Gate", "Yard", "Yard", "Yard -> Gate", "Yard", "Yard -> -"};
    const QStringList reserves{"1.00 GB -> 3.00 GB", "1.00 GB -> 3.00 GB", "1.00 GB -> 3.00 GB", QString(),
                               "1.00 GB -> 0.00 KB", "1.00 GB -> 0.00 KB"};
    for (qsizetype i = 0; i < edits.size(); ++i) {
        const Run told = ctl(QStringList{"forecast"} + edits[i]);
        QCOMPARE(told.errors, QString());
        QCOMPARE(told.exitCode, 0);
        QCOMPARE(words(told.outputLines().value(1)).value(0), groups[i]);
        const QStringList volume = words(told.outputLines().value(3));
        QCOMPARE(volume.size() > 3 ? volume.last() : QString(), reserves[i]);
        QCOMPARE(ctl({"groups"}).output, before);
    }
}

void TestRecordingctlStorage::forecastOfARefusedEdit_data()
{
    QTest::addColumn<QStringList>("edit");
    QTest::newRow("add") << QStringList{"group-add", "Yard",  "--path",   "/nowhere",
                                        "--path",    "/proc", "--member", "Door"};
    QTest::newRow("update") << QStringList{"group-update", "Yard", "--remove-member", "Door"};
    QTest::newRow("path") << QStringList{"group-path-set", "Yard", "/nowhere", "--reserve", "1024"};
    QTest::newRow("paths") << QStringList{"group-path-remove", "Yard", "/nowhere"};
}

/// The lines are those of the edit, but that the station "would refuse" it.
void TestRecordingctlStorage::forecastOfARefusedEdit()
{
    QFETCH(const QStringList, edit);
    QCOMPARE(ctl({"group-add", "Yard", "--path", folder("a"), "--reserve", "0"}).exitCode, 0);
    const Run told = ctl(QStringList{"forecast"} + edit);
    const Run done = ctl(edit);
    QCOMPARE(done.exitCode, 1);
    QCOMPARE(told.exitCode, 1);
    QString expected = done.errors;
    expected.replace("the station refused", "the station would refuse");
    QString errors = told.errors;
    errors.replace("recordingGroupPathList \"", "path \""); // the edit names the key of its answer
    QCOMPARE(errors, expected);
}

/// Of a removal of several paths, those that can go stand beside the error.
void TestRecordingctlStorage::forecastOfAnEditRefusedInPart()
{
    QCOMPARE(ctl({"group-add", "Yard", "--path", folder("a"), "--path", folder("b")}).exitCode, 0);
    const Run told = ctl({"forecast", "group-path-remove", "Yard", "/nowhere", folder("a"), "--json"});
    QCOMPARE(told.exitCode, 1);
    const QJsonValue reply = told.reply();
    QCOMPARE(reply["command"], QJsonValue("forecast"));
    QCOMPARE(reply["returnCode"], QJsonValue("PathNotInGroup"));
    QCOMPARE(reply["error"]["elements"].toArray().size(), 1);
    QCOMPARE(reply["error"]["elements"][0]["value"], QJsonValue("/nowhere"));
    QCOMPARE(reply["data"]["edit"], QJsonValue("group-path-remove"));
    QCOMPARE(reply["data"]["groups"][0]["then"]["name"], QJsonValue("Yard"));
    QCOMPARE(reply["data"]["volumes"][0]["now"]["reservedSpaceMegabytes"], QJsonValue(4096));
    QCOMPARE(reply["data"]["volumes"][0]["then"]["reservedSpaceMegabytes"], QJsonValue(2048));
}

void TestRecordingctlStorage::forecastIsForEditsOnly()
{
    const Run listing = ctl({"forecast", "groups"});
    QCOMPARE(listing.exitCode, 2);
    QCOMPARE(listing.errors, "recordingctl: forecast takes a command that edits recording groups, not \"groups\"\n");
    QCOMPARE(ctl({"forecast"}).exitCode, 2);
    const Run option = ctl({"forecast", "group-remove", "Yard", "--path", "/a"});
    QCOMPARE(option.errors, "recordingctl: group-remove takes no option --path\n");
    QCOMPARE(ctl({"forecast", "group-remove", "Nobody"}).exitCode, 1);
}

QTEST_GUILESS_MAIN(TestRecordingctlStorage)
#include "tst_recordingctl_storage.moc"
