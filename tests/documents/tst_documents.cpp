#include "Page.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

namespace {

// The anchors of a page's headings, as sites that show Markdown make them.
QStringList anchors(const QString &page)
{
    static const QRegularExpression heading("^#+ (.*)$", QRegularExpression::MultilineOption);
    static const QRegularExpression dropped("[^a-z0-9 _-]");
    QStringList found;
    auto match = heading.globalMatch(page);
    while (match.hasNext())
        found.append(match.next().captured(1).toLower().remove(dropped).replace(' ', '-'));
    return found;
}

} // namespace

/// What the documents say must stay true: they show code that is built, explain every package, and link to what exists.
class DocumentsTest : public QObject
{
    Q_OBJECT

private slots:
    void readmeShowsTheHostThatIsBuilt();
    void readmeExplainsEveryPackage();
    void linksLeadSomewhere_data() { addPages(); }
    void linksLeadSomewhere();
    void namedFilesExist_data() { addPages(); }
    void namedFilesExist();
    void namedTestsExist_data() { addPages(); }
    void namedTestsExist();

private:
    static void addPages();
};

void DocumentsTest::readmeShowsTheHostThatIsBuilt()
{
    const QString host = Page::text("examples/minimal-host/main.cpp");
    QVERIFY(!host.isEmpty());
    QVERIFY(Page::text("README.md").contains("```cpp\n" + host + "```"));
}

void DocumentsTest::readmeExplainsEveryPackage()
{
    const QString readme = Page::text("README.md");
    int packages = 0;
    for (const QString &line : Page::text("scripts/debian-packages.txt").split('\n', Qt::SkipEmptyParts)) {
        if (line.startsWith('#'))
            continue;
        for (const QString &package : line.split('|')) {
            QVERIFY2(readme.contains('`' + package.trimmed() + '`'), qPrintable(line));
            ++packages;
        }
    }
    QVERIFY(packages > 0);
}

void DocumentsTest::addPages()
{
    QTest::addColumn<QString>("file");
    for (const QString &file : Page::files())
        QTest::newRow(qPrintable(file)) << file;
}

void DocumentsTest::linksLeadSomewhere()
{
    QFETCH(QString, file);
    static const QRegularExpression link("\\]\\(([^)#\\s]*)(?:#([^)\\s]*))?\\)");
    const QDir folder = QFileInfo(QDir(SOURCE_DIR).filePath(file)).dir();
    auto match = link.globalMatch(Page::text(file));
    while (match.hasNext()) {
        const auto found = match.next();
        const QString target = found.captured(1);
        if (target.contains("://"))
            continue;
        const QString path = target.isEmpty() ? file : QDir(SOURCE_DIR).relativeFilePath(folder.filePath(target));
        QVERIFY2(QFileInfo::exists(QDir(SOURCE_DIR).filePath(path)), qPrintable(target));
        if (found.hasCaptured(2))
            QVERIFY2(anchors(Page::text(path)).contains(found.captured(2)), qPrintable(found.captured()));
    }
}

// A file or folder of the repository between backticks: `src/trace`, `protocol/StationVocabulary.{h,cpp}`.
void DocumentsTest::namedFilesExist()
{
    QFETCH(QString, file);
    static const QRegularExpression path(
        "`((?:apps|benchmarks|cmake|docs|examples|host|protocol|scripts|src|station|tests|tracelog|\\.ci)/[\\w./-]+)"
        "(?:\\{([\\w,]+)\\})?`");
    auto match = path.globalMatch(Page::text(file));
    while (match.hasNext()) {
        const auto found = match.next();
        const QStringList ends = found.hasCaptured(2) ? found.captured(2).split(',') : QStringList{QString()};
        for (const QString &end : ends)
            QVERIFY2(QFileInfo::exists(QDir(SOURCE_DIR).filePath(found.captured(1) + end)),
                     qPrintable(found.captured()));
    }
}

// `tst_name`, and the functions that are named behind it.
void DocumentsTest::namedTestsExist()
{
    QFETCH(QString, file);
    QHash<QString, QString> sources;
    QDirIterator tests(QDir(SOURCE_DIR).filePath("tests"), {"tst_*.cpp", "tst_*.qml"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (tests.hasNext()) {
        const QFileInfo test(tests.next());
        sources.insert(test.baseName(), QDir(SOURCE_DIR).relativeFilePath(test.filePath()));
    }
    static const QRegularExpression name("`(tst_\\w+)`(?:: ((?:`\\w+`(?:, )?)+))?");
    auto match = name.globalMatch(Page::text(file));
    while (match.hasNext()) {
        const auto found = match.next();
        const QString source = sources.value(found.captured(1));
        QVERIFY2(!source.isEmpty(), qPrintable(found.captured()));
        for (QString function : found.captured(2).split(", ", Qt::SkipEmptyParts))
            QVERIFY2(Page::text(source).contains(function.remove('`') + '('), qPrintable(found.captured()));
    }
}

QTEST_APPLESS_MAIN(DocumentsTest)
#include "tst_documents.moc"
