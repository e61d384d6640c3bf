#include "smb/SmbClient.h"

#include <QTest>

#include <libsmbclient.h>

#include <sys/statvfs.h>

/// The block figures of SMB servers, as libsmbclient hands them on.
class SmbSpaceTest : public QObject
{
    Q_OBJECT

private slots:
    void figuresBecomeBytes_data();
    void figuresBecomeBytes();
};

void SmbSpaceTest::figuresBecomeBytes_data()
{
    QTest::addColumn<bool>("isPosix");
    QTest::addColumn<qulonglong>("bsize");
    QTest::addColumn<qulonglong>("frsize");
    QTest::addColumn<qulonglong>("blocks");
    QTest::addColumn<qulonglong>("free");
    QTest::addColumn<qulonglong>("available");
    QTest::addColumn<qint64>("bytesTotal");
    QTest::addColumn<qint64>("bytesAvailable");
    const auto row = [](const char *name, bool isPosix, qulonglong bsize, qulonglong frsize, qulonglong blocks,
                        qulonglong available, qint64 bytesTotal, qint64 bytesAvailable) {
        QTest::newRow(name) << isPosix << bsize << frsize << blocks << available + 7 << available << bytesTotal
                            << bytesAvailable;
    };
    row("sectors of 512 bytes, 2 in a block", false, 512, 2, 1000, 400, 1024000, 409600);
    row("sectors of 4096 bytes, 8 in a block", false, 4096, 8, 10, 3, 327680, 98304);
    row("one sector in a block", false, 4096, 1, 10, 3, 40960, 12288);
    row("the second field is empty", false, 4096, 0, 10, 3, 40960, 12288);
    row("POSIX: the second field is the block", true, 65536, 4096, 10, 3, 40960, 12288);
    row("POSIX: the first field is the block", true, 4096, 0, 10, 3, 40960, 12288);
    row("more than 32 bits", false, 512, 128, Q_UINT64_C(1) << 30, Q_UINT64_C(1) << 29, Q_INT64_C(1) << 46,
        Q_INT64_C(1) << 45);
}

void SmbSpaceTest::figuresBecomeBytes()
{
    QFETCH(bool, isPosix);
    QFETCH(qulonglong, bsize);
    QFETCH(qulonglong, frsize);
    QFETCH(qulonglong, blocks);
    QFETCH(qulonglong, free);
    QFETCH(qulonglong, available);
    struct statvfs figures = {};
    figures.f_flag = isPosix ? 0 : SMBC_VFS_FEATURE_NO_UNIXCIFS;
    figures.f_bsize = bsize;
    figures.f_frsize = frsize;
    figures.f_blocks = blocks;
    figures.f_bfree = free;
    figures.f_bavail = available;
    const SmbSpace space = spaceOf(figures);
    QCOMPARE(space.returnCode, QStringLiteral("0"));
    QTEST(space.bytesTotal, "bytesTotal");
    QTEST(space.bytesAvailable, "bytesAvailable");
}

QTEST_APPLESS_MAIN(SmbSpaceTest)
#include "tst_smb_space.moc"
