#include "ItemRoles.h"
#include "PluginRecordingManagement.h"

#include <QDir>
#include <QFile>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QTest>

namespace {

QString textOf(const QString &file)
{
    QFile source(QDir(SOURCE_DIR).filePath(file));
    return source.open(QIODevice::ReadOnly) ? QString::fromUtf8(source.readAll()) : QString();
}

} // namespace

/// What the documents say must stay true: they name everything that QML sees, show code that is built, and link to
/// files that exist.
class DocumentsTest : public QObject
{
    Q_OBJECT

private slots:
    void qmlPageNamesEveryMember();
    void qmlPageNamesEveryRole();
    void readmeShowsTheHostThatIsBuilt();
    void readmeExplainsEveryPackage();
    void linksLeadSomewhere_data();
    void linksLeadSomewhere();
};

void DocumentsTest::qmlPageNamesEveryMember()
{
    const QString page = textOf("docs/qml-api.md");
    const QMetaObject &meta = PluginRecordingManagement::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QString name = QString::fromLatin1(meta.method(i).name());
        QVERIFY2(page.contains('`' + name + '(') || page.contains('`' + name + '`'), qPrintable(name));
    }
    for (int i = meta.enumeratorOffset(); i < meta.enumeratorCount(); ++i) {
        const QMetaEnum enumeration = meta.enumerator(i);
        for (int key = 0; key < enumeration.keyCount(); ++key) {
            const QString entry = QStringLiteral("`%1` %2").arg(enumeration.key(key)).arg(enumeration.value(key));
            QVERIFY2(page.contains(entry), qPrintable(entry));
        }
    }
}

void DocumentsTest::qmlPageNamesEveryRole()
{
    const QString page = textOf("docs/qml-api.md");
    for (const auto &names :
         {volumeRoleNames(), recordingGroupRoleNames(), nasServerRoleNames(), directoryRoleNames(), treeRoleNames()}) {
        for (const QByteArray &name : names)
            QVERIFY2(page.contains('`' + QString::fromLatin1(name) + '`'), name.constData());
    }
}

void DocumentsTest::readmeShowsTheHostThatIsBuilt()
{
    const QString host = textOf("examples/minimal-host/main.cpp");
    QVERIFY(!host.isEmpty());
    QVERIFY(textOf("README.md").contains("```cpp\n" + host + "```"));
}

void DocumentsTest::readmeExplainsEveryPackage()
{
    const QString readme = textOf("README.md");
    int packages = 0;
    for (const QString &line : textOf("scripts/debian-packages.txt").split('\n', Qt::SkipEmptyParts)) {
        if (line.startsWith('#'))
            continue;
        for (const QString &package : line.split('|')) {
            QVERIFY2(readme.contains('`' + package.trimmed() + '`'), qPrintable(line));
            ++packages;
        }
    }
    QVERIFY(packages > 0);
}

void DocumentsTest::linksLeadSomewhere_data()
{
    QTest::addColumn<QString>("file");
    const QDir root(SOURCE_DIR);
    for (const QString &folder : {QString("."), QString("docs"), QString("docs/decisions")}) {
        for (const QString &page : QDir(root.filePath(folder)).entryList({"*.md"}, QDir::Files))
            QTest::newRow(qPrintable(folder + '/' + page)) << folder + '/' + page;
    }
}

void DocumentsTest::linksLeadSomewhere()
{
    QFETCH(QString, file);
    static const QRegularExpression link("\\]\\(([^)#]+)(#[^)]*)?\\)");
    const QDir folder = QFileInfo(QDir(SOURCE_DIR).filePath(file)).dir();
    auto match = link.globalMatch(textOf(file));
    while (match.hasNext()) {
        const QString target = match.next().captured(1);
        if (!target.contains("://"))
            QVERIFY2(QFileInfo::exists(folder.filePath(target)), qPrintable(target));
    }
}

QTEST_APPLESS_MAIN(DocumentsTest)
#include "tst_documents.moc"
