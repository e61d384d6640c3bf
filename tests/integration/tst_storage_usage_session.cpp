#include "ClientSession.h"
#include "RecordedSite.h"
#include "companions/StatusMonitorPlugin.h"
#include "embedded/EmbeddedLink.h"
#include "link/StationCalls.h"

#include <QAbstractItemModel>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QDate today(2026, 3, 20);
constexpr qint64 megabyte = RecordedSite::megabyte;
} // namespace

/// From real files to what an operator's page shows: plug-in, host and station together.
class StorageUsageSessionTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void filesChangeTheFigures();
    void theLackOfDaysIsAnAlarmUntilThereAreEnough();
    void aVolumeThatVanishesIsAnAlarmUntilItReturns();
    void aGroupThatIsMadeIsThereAtOnce();

private:
    void start();
    QString day(int ago) const { return RecordedSite::dayFolder(m_path, u"Doors"_s, u"Gate"_s, today.addDays(-ago)); }
    QString usage() const;
    QString volumes() const;
    QStringList alarms() const;

    std::unique_ptr<RecordedSite> m_site;
    std::unique_ptr<ClientSession> m_session;
    QString m_path;
};

void StorageUsageSessionTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_site = std::make_unique<RecordedSite>();
    m_session = std::make_unique<ClientSession>();
    m_path = m_site->makePath(u"rec"_s);
}

void StorageUsageSessionTest::cleanup()
{
    m_session.reset();
    m_site.reset();
}

void StorageUsageSessionTest::start()
{
    ClientSession::Options options;
    options.pluginFolders = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    options.url = QStringLiteral("embedded:");
    options.linkKinds = {EmbeddedLink::kind([this] { return std::make_unique<Station>(m_site->settings(today)); })};
    QVERIFY2(m_session->start(options), qPrintable(m_session->error()));
    QTRY_VERIFY(m_session->isConnected());
}

/// The rows of the storage-usage model: name, recorded and remaining days, bytes of a day, reserved minutes.
QString StorageUsageSessionTest::usage() const
{
    QObject *object = nullptr;
    QMetaObject::invokeMethod(m_session->plugin(), "getStorageUsageModel", Q_RETURN_ARG(QObject *, object),
                              Q_ARG(QString, QString()));
    const auto *model = qobject_cast<QAbstractItemModel *>(object);
    QStringList rows;
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, 0);
        QStringList values;
        for (const int role : {2, 6, 7, 8, 9})
            values.append(index.data(Qt::UserRole + role).toString());
        rows.append(values.join(u' '));
    }
    return rows.join(u" | "_s);
}

/// The volumes of the group: path, KB and free KB.
QString StorageUsageSessionTest::volumes() const
{
    QObject *object = nullptr;
    QMetaObject::invokeMethod(m_session->plugin(), "getGroupVolumeModel", Q_RETURN_ARG(QObject *, object),
                              Q_ARG(QString, QString()), Q_ARG(QString, u"Doors"_s));
    const auto *model = qobject_cast<QAbstractItemModel *>(object);
    QStringList rows;
    for (int row = 0; model && row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, 0);
        rows.append(u"%1 %2 %3"_s.arg(index.data(Qt::UserRole + 2).toString(), index.data(Qt::UserRole + 4).toString(),
                                      index.data(Qt::UserRole + 5).toString()));
    }
    return rows.join(u" | "_s);
}

QStringList StorageUsageSessionTest::alarms() const
{
    QStringList list;
    for (const StatusMonitorPlugin::Alarm &alarm : m_session->statusMonitor()->alarms())
        list.append(alarm.kind == StatusMonitorPlugin::VolumeError ? u"volume"_s : u"days of "_s + alarm.groupName);
    return list;
}

void StorageUsageSessionTest::filesChangeTheFigures()
{
    m_site->addGroup(u"Doors"_s, {m_path});
    RecordedSite::write(day(1), u"0001.rec"_s, 40 * megabyte);
    start();
    QTRY_COMPARE(usage(), u"Doors 1 15 41943040 0"_s); // 600 MB free
    QCOMPARE(volumes(), m_path + u" 1024000 614400"_s);

    RecordedSite::write(day(2), u"0001.rec"_s, 20 * megabyte); // written
    QTRY_COMPARE(usage(), u"Doors 2 20 31457280 0"_s);
    RecordedSite::write(day(2), u"0001.rec"_s, 80 * megabyte); // grown: not the newest day, so not at once
    RecordedSite::write(day(0), u"0001.rec"_s, 80 * megabyte); // today is no day's usage
    QTRY_COMPARE(usage(), u"Doors 3 20 31457280 0"_s);
    bool isSent = false;
    QMetaObject::invokeMethod(m_session->plugin(), "reloadStorageUsageInfo", Q_RETURN_ARG(bool, isSent),
                              Q_ARG(QString, QString()));
    QVERIFY(isSent);
    QTRY_COMPARE(usage(), u"Doors 3 10 62914560 0"_s);

    QVERIFY(QDir().rename(day(0), day(3))); // aged
    QTRY_COMPARE(usage(), u"Doors 3 9 69905066 0"_s);
    QVERIFY(QDir(day(3)).removeRecursively()); // deleted
    QVERIFY(QDir(day(2)).removeRecursively());
    QTRY_COMPARE(usage(), u"Doors 1 15 41943040 0"_s);
    m_site->setFree(80 * megabyte); // filled
    QTRY_COMPARE(usage(), u"Doors 1 2 41943040 0"_s);
    QCOMPARE(volumes(), m_path + u" 1024000 81920"_s);
    QCOMPARE(alarms(), QStringList());
}

void StorageUsageSessionTest::theLackOfDaysIsAnAlarmUntilThereAreEnough()
{
    m_site->addGroup(u"Doors"_s, {m_path}, 17);
    RecordedSite::write(day(1), u"0001.rec"_s, 40 * megabyte);
    start();
    QTRY_COMPARE(alarms(), QStringList{u"days of Doors"_s}); // 1 + 15
    RecordedSite::write(day(2), u"0001.rec"_s, 40 * megabyte);
    QTRY_COMPARE(alarms(), QStringList());
    QCOMPARE(usage(), u"Doors 2 15 41943040 24480"_s);
}

void StorageUsageSessionTest::aVolumeThatVanishesIsAnAlarmUntilItReturns()
{
    m_site->addGroup(u"Doors"_s, {m_path}, 10);
    RecordedSite::write(day(1), u"0001.rec"_s, 40 * megabyte);
    start();
    QTRY_COMPARE(usage(), u"Doors 1 15 41943040 14400"_s);
    QCOMPARE(alarms(), QStringList());
    m_site->unmountDisk();
    QTRY_COMPARE(alarms(), QStringList{u"volume"_s});
    QCOMPARE(usage(), u"Doors -1 0 41943040 14400"_s);
    QCOMPARE(volumes(), m_path + u" 0 0"_s);
    m_site->setFree(600 * megabyte);
    QTRY_COMPARE(alarms(), QStringList());
    QTRY_COMPARE(usage(), u"Doors 1 15 41943040 14400"_s);
}

void StorageUsageSessionTest::aGroupThatIsMadeIsThereAtOnce()
{
    start();
    QCOMPARE(usage(), QString());
    const QVariantMap group{
        {u"recordingGroupName"_s, u"Doors"_s}, {u"path"_s, m_path}, {u"pathType"_s, 0}, {u"reserveSpace"_s, qint64(0)}};
    QString code;
    m_session->stationCalls()->send(u"addRecordingGroup"_s, group, this,
                                    [&code](const StationReply &part) { code = part.returnCode; });
    QTRY_COMPARE(code, u"0"_s);
    QTRY_COMPARE(usage(), u"Doors 0 -1 -1 0"_s);
    RecordedSite::write(day(1), u"0001.rec"_s, 40 * megabyte);
    QTRY_COMPARE(usage(), u"Doors 1 15 41943040 0"_s);
}

QTEST_GUILESS_MAIN(StorageUsageSessionTest)
#include "tst_storage_usage_session.moc"
