#include "PluginErrors.h"
#include "PluginHost.h"
#include "framework/PluginBase.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// Why the built plug-in said no, through the built trace library, whose log is switched off.
class PluginErrorsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void factOfARefusal_data();
    void factOfARefusal();
    void nothingIsWritten();
    void aFactIsForgottenWhenTheEventLoopComesRound();
    void aSuccessLeavesNoFact();
    void nobodyHearsWhenItHasEnded();
    void theNewestOneHears();
    void libraryThatIsMissing();

private:
    bool addServer(const QString &host)
    {
        bool sent = true;
        QMetaObject::invokeMethod(m_plugin.get(), "addNASServer", Q_RETURN_ARG(bool, sent), Q_ARG(QString, host),
                                  Q_ARG(QString, "Host"), Q_ARG(QString, "anna"), Q_ARG(QString, "s3 cret"));
        return sent;
    }

    QTemporaryDir m_folder;
    QString m_log = m_folder.filePath(QStringLiteral("log"));
    PluginHost m_host;
    std::unique_ptr<PluginBase> m_plugin;
};

void PluginErrorsTest::initTestCase()
{
    QVERIFY(m_folder.isValid());
    qputenv("RECORDING_TRACE_LEVEL", "off");
    qputenv("RECORDING_TRACE_FILE", m_log.toLocal8Bit());
    QVERIFY(PluginHost::loadTraceLibrary(QStringLiteral(TRACE_LIBRARY)));
    m_plugin = m_host.load({QFileInfo(QStringLiteral(RECORDING_PLUGIN_FILE)).path()});
    QVERIFY2(m_plugin, qPrintable(m_host.error()));
}

void PluginErrorsTest::factOfARefusal_data()
{
    QTest::addColumn<QStringList>("group"); // its name and path
    QTest::addColumn<qlonglong>("reserve");
    QTest::addColumn<QString>("fact");
    QTest::newRow("a number") << QStringList{"Yard", "/srv"} << 1000LL << "Reserve space must be multiple of 1024";
    QTest::newRow("a text") << QStringList{"", "/srv"} << 1024LL << "Call function with empty parameter";
    QTest::newRow("not sent, without the full stop") << QStringList{"Yard", "/srv"} << 1024LL << "Send command failed";
}

void PluginErrorsTest::factOfARefusal()
{
    QFETCH(const QStringList, group);
    QFETCH(const qlonglong, reserve);
    const PluginErrors errors(QStringLiteral(TRACE_LIBRARY));
    const int add = m_plugin->metaObject()->indexOfMethod("addRecordingGroup(QString,QString,RecPathType,qlonglong)");
    const QMetaMethod method = m_plugin->metaObject()->method(add);
    const int local = 0;
    bool sent = true;
    QVERIFY(method.invoke(m_plugin.get(), Qt::DirectConnection, QGenericReturnArgument("bool", &sent),
                          QGenericArgument("QString", &group[0]), QGenericArgument("QString", &group[1]),
                          QGenericArgument("RecPathType", &local), QGenericArgument("qlonglong", &reserve)));
    QVERIFY(!sent);
    QTEST(errors.lastFact(), "fact");
}

void PluginErrorsTest::nothingIsWritten()
{
    const PluginErrors errors(QStringLiteral(TRACE_LIBRARY));
    QVERIFY(!addServer({}));
    QCOMPARE(errors.lastFact(), "host is empty"); // and no word of the password
    QCOMPARE(QFileInfo(m_log).size(), 0);
}

void PluginErrorsTest::aFactIsForgottenWhenTheEventLoopComesRound()
{
    const PluginErrors errors(QStringLiteral(TRACE_LIBRARY));
    QVERIFY(!addServer({}));
    QVERIFY(!errors.lastFact().isEmpty());
    QTRY_COMPARE(errors.lastFact(), QString());
}

void PluginErrorsTest::aSuccessLeavesNoFact()
{
    PluginErrors errors(QStringLiteral(TRACE_LIBRARY));
    QVERIFY(!addServer({}));
    errors.forget();
    QObject *model = nullptr;
    QVERIFY(QMetaObject::invokeMethod(m_plugin.get(), "getVolumeModel", Q_RETURN_ARG(QObject *, model)));
    QCOMPARE(errors.lastFact(), QString());
}

void PluginErrorsTest::nobodyHearsWhenItHasEnded()
{
    std::make_unique<PluginErrors>(QStringLiteral(TRACE_LIBRARY)).reset();
    QVERIFY(!addServer({}));
}

void PluginErrorsTest::theNewestOneHears()
{
    const PluginErrors first(QStringLiteral(TRACE_LIBRARY));
    const PluginErrors second(QStringLiteral(TRACE_LIBRARY));
    QVERIFY(!addServer({}));
    QCOMPARE(first.lastFact(), QString());
    QCOMPARE(second.lastFact(), "host is empty");
}

void PluginErrorsTest::libraryThatIsMissing()
{
    const PluginErrors errors(m_folder.filePath("libZarnLogUtl.so"));
    QVERIFY(!addServer({}));
    QCOMPARE(errors.lastFact(), QString());
}

QTEST_GUILESS_MAIN(PluginErrorsTest)
#include "tst_plugin_errors.moc"
