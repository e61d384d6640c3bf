#include "Page.h"

#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

// A command of a block and what the page shows below it.
struct Command
{
    QString text;
    QStringList output;
};

// Blocks of commands alone have no output to compare.
QList<Command> commandsOf(const Page::CodeBlock &block)
{
    QList<Command> commands;
    const QStringList lines = block.code.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (block.language == QStringLiteral("sh"))
            commands.append({line, {}});
        else if (line.startsWith(QStringLiteral("$ ")))
            commands.append({line.mid(2), {}});
        else if (!commands.isEmpty())
            commands.last().output.append(line);
    }
    return commands;
}

// What differs from one run to the next is replaced: ids, times, sizes and other figures, this machine's name and
// address.
QString masked(QString text)
{
    static const std::pair<QRegularExpression, QString> rules[] = {
        {QRegularExpression(QStringLiteral("\\{[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\}")), QStringLiteral("{id}")},
        {QRegularExpression(QStringLiteral("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d(\\.\\d+)?Z?")),
         QStringLiteral("TIME")},
        {QRegularExpression(QStringLiteral("-?\\d+\\.\\d\\d [KMGT]B")), QStringLiteral("SIZE")},
        {QRegularExpression(QStringLiteral("(ize\":)\\d+")), QStringLiteral("\\1N")},
        {QRegularExpression(QStringLiteral("(RecordingServer) +[0-9a-f.:]+")), QStringLiteral("\\1 ADDRESS")},
        {QRegularExpression(QStringLiteral(" +")), QStringLiteral(" ")},
        {QRegularExpression(QStringLiteral(" +$")), QString()},
    };
    for (const auto &[pattern, replacement] : rules)
        text.replace(pattern, replacement);
    return text;
}

// Commands whose rows depend on the machine: the page and the run have the same titles.
bool isOfTheMachine(const QString &command)
{
    static const QRegularExpression names(
        QStringLiteral("^recordingctl (volumes|usage|alarms|storage|forecast|history|watch)\\b"));
    return names.match(command).hasMatch() && !command.contains(QStringLiteral("--json"));
}

// The first line with columns.
QString titles(const QStringList &lines)
{
    for (const QString &line : lines) {
        if (line.contains(QStringLiteral("  ")))
            return masked(line);
    }
    return {};
}

} // namespace

/// The commands that the documents show, run one after the other. A block says in a comment above it what is needed
/// first, lines of a shell ("run", or "run fresh" for a station of its own), or why it is not run.
///
/// Below HOME and /srv each page has folders of its own: "/srv" stands for one of them.
class DocumentCommandsTest : public QObject
{
    Q_OBJECT
private slots:
    void everyBlockIsRunOrSaysWhyNot_data() { addPages(); }
    void everyBlockIsRunOrSaysWhyNot();
    void commandsDoWhatThePageShows_data() { addPages(); }
    void commandsDoWhatThePageShows();

private:
    static void addPages();
    static QList<Page::CodeBlock> blocks(const QString &file);
};

void DocumentCommandsTest::addPages()
{
    QTest::addColumn<QString>("file");
    for (const QString &file : Page::files()) {
        if (!blocks(file).isEmpty())
            QTest::newRow(qPrintable(file)) << file;
    }
}

QList<Page::CodeBlock> DocumentCommandsTest::blocks(const QString &file)
{
    QList<Page::CodeBlock> found;
    for (const Page::CodeBlock &block : Page::codeBlocks(Page::text(file))) {
        if (block.language == QStringLiteral("sh") || block.language == QStringLiteral("console"))
            found.append(block);
    }
    return found;
}

void DocumentCommandsTest::everyBlockIsRunOrSaysWhyNot()
{
    QFETCH(const QString, file);
    static const QRegularExpression note(QStringLiteral("^(run( fresh)?(\\n|$)|not run: .)"));
    for (const Page::CodeBlock &block : blocks(file))
        QVERIFY2(note.match(block.note).hasMatch(), qPrintable(QStringLiteral("%1:%2").arg(file).arg(block.line)));
}

void DocumentCommandsTest::commandsDoWhatThePageShows()
{
    QFETCH(const QString, file);
    // Beside the test, where the machine has a disk: /tmp may be one in memory, which is no volume.
    const QTemporaryDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/commands-XXXXXX"));
    QVERIFY(folder.isValid());
    const QString served = folder.filePath(QStringLiteral("srv"));
    static const QRegularExpression srv(QStringLiteral("(?<![\\w.-])/srv(?![\\w.-])"));

    int home = 0;
    for (const Page::CodeBlock &block : blocks(file)) {
        if (!block.note.startsWith(QStringLiteral("run")))
            continue;
        QStringList setUp = block.note.split(u'\n');
        if (setUp.takeFirst() == QStringLiteral("run fresh"))
            ++home;
        const QList<Command> commands = commandsOf(block);
        QVERIFY(!commands.isEmpty());

        // Each command sees the exit status of the one before it. Its output is followed by its errors and a mark.
        QString script = QStringLiteral("set -e\n") + setUp.join(u'\n') + QStringLiteral("\nset +e; last=0\n");
        for (const Command &command : commands)
            script += QStringLiteral("{ (exit $last)\n%1\n} 2>errors; last=$?; cat errors; echo \"@@ $last\"\n")
                          .arg(command.text);
        script.replace(QStringLiteral("build/release/bin/"), QString());
        script.replace(srv, served);

        QProcess shell;
        shell.setProcessChannelMode(QProcess::MergedChannels);
        shell.setStandardInputFile(QProcess::nullDevice());
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), folder.filePath(QStringLiteral("home%1").arg(home)));
        environment.remove(QStringLiteral("XDG_DATA_HOME"));
        environment.insert(QStringLiteral("PATH"),
                           QStringLiteral(PROGRAM_FOLDER ":") + environment.value(QStringLiteral("PATH")));
        shell.setProcessEnvironment(environment);
        QVERIFY(QDir().mkpath(environment.value(QStringLiteral("HOME"))));
        QVERIFY(QDir().mkpath(served));
        shell.setWorkingDirectory(folder.path());
        shell.start(QStringLiteral("bash"), {QStringLiteral("-c"), script});
        QVERIFY(shell.waitForFinished(120000));
        QString output = QString::fromUtf8(shell.readAll());
        output.replace(served, QStringLiteral("/srv"));
        output.replace(
            QRegularExpression(QStringLiteral("\\b%1\\b").arg(QRegularExpression::escape(QSysInfo::machineHostName()))),
            QStringLiteral("vm"));
        const QString place = QStringLiteral("%1:%2").arg(file).arg(block.line);

        QStringList lines;
        qsizetype number = 0;
        for (const QString &line : output.split(u'\n', Qt::SkipEmptyParts)) {
            if (!line.startsWith(QStringLiteral("@@ "))) {
                lines.append(line);
                continue;
            }
            const Command command = commands.value(number++);
            const QString context = QStringLiteral("%1, %2\n%3").arg(place, command.text, lines.join(u'\n'));
            if (block.language == QStringLiteral("sh")) {
                QVERIFY2(line == QStringLiteral("@@ 0"), qPrintable(context));
            } else if (isOfTheMachine(command.text) && !titles(command.output).isEmpty()) {
                QVERIFY2(titles(lines) == titles(command.output), qPrintable(context));
            } else {
                QStringList expected;
                for (const QString &shown : command.output)
                    expected.append(masked(shown));
                for (QString &found : lines)
                    found = masked(found);
                QVERIFY2(lines == expected,
                         qPrintable(context + QStringLiteral("\nexpected:\n") + expected.join(u'\n')));
            }
            lines.clear();
        }
        QVERIFY2(number == commands.size(), qPrintable(place + u'\n' + output)); // else the set-up failed
    }
}

QTEST_GUILESS_MAIN(DocumentCommandsTest)
#include "tst_document_commands.moc"
