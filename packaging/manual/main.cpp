#include "Completions.h"
#include "ManualPage.h"
#include "ProgramHelp.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <cstdio>
#include <cstdlib>
#include <optional>

namespace {
std::optional<QString> printed(const QString &program, const QString &option)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, {option});
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

bool write(const QString &name, const QString &text)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0 && file.flush();
}

int fail(const QString &text)
{
    std::fprintf(stderr, "recording-manual: %s\n", qUtf8Printable(text));
    return EXIT_FAILURE;
}
} // namespace

/// recording-manual PROGRAM PAGE FOLDER: writes the man page of the program, from the template PAGE, and its
/// completions for bash, zsh and fish into the folder.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        return fail(QStringLiteral("expected a program, the template of its page and a folder"));
    const QString program = arguments[1];
    const QString name = QFileInfo(program).fileName();
    const std::optional<QString> helpText = printed(program, QStringLiteral("--help"));
    const std::optional<QString> version = printed(program, QStringLiteral("--version"));
    QFile page(arguments[2]);
    if (!helpText || !version || !page.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("%1 tells no help, or %2 cannot be read").arg(program, arguments[2]));

    const ProgramHelp help =
        name == QStringLiteral("recordingctl") ? helpOfRecordingctl() : helpFromText(name, *helpText);
    if (help.options.isEmpty())
        return fail(QStringLiteral("the help of %1 lists no option").arg(program));
    const QString folder = arguments[3] + u'/';
    const QString pageName = QFileInfo(arguments[2]).completeBaseName(); // without ".in"
    const bool isWritten =
        write(folder + pageName,
              manualPage(QString::fromUtf8(page.readAll()), help, version->trimmed().section(u' ', -1)))
        && write(folder + name + QStringLiteral(".bash"), bashCompletion(help))
        && write(folder + u'_' + name, zshCompletion(help))
        && write(folder + name + QStringLiteral(".fish"), fishCompletion(help));
    return isWritten ? EXIT_SUCCESS : fail(QStringLiteral("%1 cannot be written to").arg(folder));
}
