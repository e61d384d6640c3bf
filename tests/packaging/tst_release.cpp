#include "../integration/ToolRun.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

/// scripts/release in a repository of its own, whose tests and packages are played.
class ReleaseTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void aCleanTreeIsReleased();
    void isRefused_data();
    void isRefused();
    void aVersionIsReleasedOnce();

private:
    void write(const QString &name, const QString &text) const;
    Run inTree(const QString &program, const QStringList &arguments = {}) const;
    QString tags() const { return inTree("git", {"tag", "--list"}).output; }

    std::unique_ptr<QTemporaryDir> m_tree;
};

void ReleaseTest::write(const QString &name, const QString &text) const
{
    QFile file(m_tree->filePath(name));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) == text.toUtf8().size());
    file.close();
    if (name.startsWith("scripts/"))
        QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner));
}

Run ReleaseTest::inTree(const QString &program, const QStringList &arguments) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *person : {"GIT_AUTHOR", "GIT_COMMITTER"}) {
        environment.insert(QString(person) + "_NAME", "Test");
        environment.insert(QString(person) + "_EMAIL", "test@example.com");
    }
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_tree->path());
    process.start(program, arguments);
    return finished(process);
}

void ReleaseTest::init()
{
    m_tree = std::make_unique<QTemporaryDir>();
    QVERIFY(m_tree->isValid() && QDir(m_tree->path()).mkdir("scripts"));
    for (const char *script : {"scripts/release", "scripts/lib.sh"})
        QVERIFY(QFile::copy(QDir(SOURCE_DIR).filePath(script), m_tree->filePath(script)));
    write("scripts/test", "#!/bin/sh\necho tests ran\n");
    write("scripts/package", "#!/bin/sh\necho packages were built\n");
    write("CMakeLists.txt", "project(recording-management VERSION 1.2.0 LANGUAGES CXX)\n");
    write("CHANGELOG.md",
          "# Changes\n\n## 1.2.0 (2026-03-20)\n\n- Something new.\n\n## 1.1.0 (2026-01-01)\n\n- Old.\n");
    write(".gitignore", "/build/\n");
    for (const QStringList &arguments :
         {QStringList{"init", "--quiet"}, QStringList{"add", "."}, QStringList{"commit", "--quiet", "-m", "all"}})
        QCOMPARE(inTree("git", arguments).exitCode, 0);
}

void ReleaseTest::aCleanTreeIsReleased()
{
    const Run run = inTree(m_tree->filePath("scripts/release"));
    QVERIFY2(run.exitCode == 0, qPrintable(run.output + run.errors));
    QVERIFY(run.output.contains("tests ran") && run.output.contains("packages were built"));
    QCOMPARE(tags(), QString("v1.2.0\n"));
    QCOMPARE(inTree("git", {"for-each-ref", "--format=%(contents)", "refs/tags/v1.2.0"}).output.trimmed(),
             QString("- Something new."));
    const Run listed = inTree("tar", {"--list", "--file", "build/release-files/recording-management-1.2.0.tar.gz"});
    QVERIFY2(listed.output.contains("recording-management-1.2.0/CMakeLists.txt\n"), qPrintable(listed.errors));
}

void ReleaseTest::isRefused_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isCommitted");
    QTest::addColumn<QString>("reason");
    const QString change = "## 1.1.0 (2026-01-01)\n\n- Old.\n";
    QTest::newRow("changed file") << "CMakeLists.txt"
                                  << "project(recording-management VERSION 1.2.0)\n"
                                  << false << "CMakeLists.txt";
    QTest::newRow("file that is not tracked") << "new.txt"
                                              << "new\n"
                                              << false << "new.txt";
    QTest::newRow("red test") << "scripts/test"
                              << "#!/bin/sh\nexit 1\n"
                              << true << "failed at: Tests";
    QTest::newRow("broken package") << "scripts/package"
                                    << "#!/bin/sh\nexit 1\n"
                                    << true << "failed at: Packages";
    QTest::newRow("tests that change a file") << "scripts/test"
                                              << "#!/bin/sh\necho >>CHANGELOG.md\n"
                                              << true << "CHANGELOG.md";
    QTest::newRow("no section") << "CHANGELOG.md"
                                << "# Changes\n\n" + change << true << "1.2.0 (YYYY-MM-DD)";
    QTest::newRow("section further down") << "CHANGELOG.md"
                                          << "# Changes\n\n" + change + "\n## 1.2.0 (2026-03-20)\n\n- New.\n"
                                          << true << "1.2.0 (YYYY-MM-DD)";
    QTest::newRow("not released yet") << "CHANGELOG.md"
                                      << "# Changes\n\n## 1.2.0 (unreleased)\n\n- New.\n"
                                      << true << "1.2.0 (YYYY-MM-DD)";
    QTest::newRow("empty section") << "CHANGELOG.md"
                                   << "# Changes\n\n## 1.2.0 (2026-03-20)\n\n" + change << true << "1.2.0 (YYYY-MM-DD)";
    QTest::newRow("no day") << "CHANGELOG.md"
                            << "# Changes\n\n## 1.2.0 (2026-02-30)\n\n- New.\n"
                            << true << "2026-02-30 is no day";
    QTest::newRow("no version") << "CMakeLists.txt"
                                << "project(recording-management)\n"
                                << true << "states no version";
}

void ReleaseTest::isRefused()
{
    QFETCH(QString, file);
    QFETCH(QString, text);
    QFETCH(bool, isCommitted);
    QFETCH(QString, reason);
    write(file, text);
    if (isCommitted)
        QCOMPARE(inTree("git", {"commit", "--quiet", "-a", "-m", "change"}).exitCode, 0);
    const Run run = inTree(m_tree->filePath("scripts/release"));
    QVERIFY(run.exitCode != 0);
    QVERIFY2(run.errors.contains(reason), qPrintable(run.output + run.errors));
    QCOMPARE(tags(), QString());
}

void ReleaseTest::aVersionIsReleasedOnce()
{
    QCOMPARE(inTree(m_tree->filePath("scripts/release")).exitCode, 0);
    QCOMPARE(inTree("git", {"commit", "--quiet", "--allow-empty", "-m", "later"}).exitCode, 0);
    const Run run = inTree(m_tree->filePath("scripts/release"));
    QVERIFY(run.exitCode != 0);
    QVERIFY2(run.errors.contains("v1.2.0 was released before"), qPrintable(run.errors));
}

QTEST_GUILESS_MAIN(ReleaseTest)
#include "tst_release.moc"
