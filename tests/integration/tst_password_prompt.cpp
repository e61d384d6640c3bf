#include "ToolRun.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <csignal>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {
/// A terminal, of which the test is the user.
class Terminal
{
public:
    Terminal()
        : m_user(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (grantpt(m_user) != 0 || unlockpt(m_user) != 0)
            qFatal("no pseudo terminal");
        m_device = open(ptsname(m_user), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    ~Terminal()
    {
        close(m_device);
        close(m_user);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    int device() const { return m_device; }
    void type(const QByteArray &keys) const
    {
        if (write(m_user, keys.constData(), static_cast<std::size_t>(keys.size())) != keys.size())
            qFatal("the terminal takes no keys");
    }
    bool hasEcho() const
    {
        termios settings{};
        tcgetattr(m_device, &settings);
        return (settings.c_lflag & ECHO) != 0;
    }
    /// Whether the terminal shows @p text, now or soon.
    bool shows(const QByteArray &text)
    {
        return QTest::qWaitFor(
            [&] {
                readShown();
                return m_shown.contains(text);
            },
            20000);
    }
    QByteArray shown()
    {
        readShown();
        return m_shown;
    }

private:
    void readShown()
    {
        pollfd source{m_user, POLLIN, 0};
        while (poll(&source, 1, 0) == 1 && (source.revents & POLLIN) != 0) {
            std::array<char, 256> bytes{};
            const ssize_t count = read(m_user, bytes.data(), bytes.size());
            if (count <= 0)
                return;
            m_shown.append(bytes.data(), count);
        }
    }

    int m_user;
    int m_device = -1;
    QByteArray m_shown;
};
} // namespace

/// The question for a password, on a terminal: nothing typed is shown, and however it ends the terminal has its echo
/// again.
class PasswordPromptTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void aPasswordIsTypedUnseen();
    void aSignalEndsTheQuestion_data();
    void aSignalEndsTheQuestion();
    void theInterruptKeyEndsTheQuestion();
    void aStoppedQuestionIsAskedAgain();
    void aLongLineIsRefused();
    void noCoreIsWritten();

private:
    void ask();

    QTemporaryDir m_data;
    std::unique_ptr<Terminal> m_terminal;
    std::unique_ptr<QProcess> m_process;
};

void PasswordPromptTest::init()
{
    m_process.reset();
    m_terminal = std::make_unique<Terminal>();
}

/// Starts recordingctl on the terminal, as its foreground process, and waits for its question.
void PasswordPromptTest::ask()
{
    m_process = std::make_unique<QProcess>();
    m_process->setProcessEnvironment(quietEnvironment());
    m_process->setInputChannelMode(QProcess::ForwardedInputChannel);
    m_process->setProcessChannelMode(QProcess::ForwardedChannels);
    const int device = m_terminal->device();
    m_process->setChildProcessModifier([device] {
        setsid();
        ioctl(device, TIOCSCTTY, 0);
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            dup2(device, standard);
    });
    m_process->start(RECORDINGCTL,
                     {QStringLiteral("--data"), m_data.path(), QStringLiteral("call"), QStringLiteral("addNASServer"),
                      QStringLiteral("256.0.0.1"), QStringLiteral("Host"), QStringLiteral("anna"),
                      QStringLiteral("-")});
    QVERIFY(m_process->waitForStarted());
    QVERIFY(m_terminal->shows("Password: "));
    QVERIFY(!m_terminal->hasEcho());
}

void PasswordPromptTest::aPasswordIsTypedUnseen()
{
    ask();
    m_terminal->type("s3cret\n");
    QVERIFY(m_process->waitForFinished());
    QCOMPARE(m_process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_process->exitCode(), 1); // the station refused the server
    QVERIFY(m_terminal->hasEcho());
    QVERIFY(!m_terminal->shown().contains("s3cret"));
}

void PasswordPromptTest::aSignalEndsTheQuestion_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
    QTest::newRow("SIGQUIT") << SIGQUIT;
}

void PasswordPromptTest::aSignalEndsTheQuestion()
{
    QFETCH(int, number);
    ask();
    m_terminal->type("s3c");
    QCOMPARE(::kill(static_cast<pid_t>(m_process->processId()), number), 0);
    QVERIFY(m_process->waitForFinished());
    QCOMPARE(m_process->exitStatus(), QProcess::CrashExit); // a shell shows 128 and the signal's number
    QCOMPARE(m_process->exitCode(), number);
    QVERIFY(m_terminal->hasEcho());
}

void PasswordPromptTest::theInterruptKeyEndsTheQuestion()
{
    ask();
    m_terminal->type("s3c\x03");
    QVERIFY(m_process->waitForFinished());
    QCOMPARE(m_process->exitStatus(), QProcess::CrashExit);
    QCOMPARE(m_process->exitCode(), SIGINT);
    QVERIFY(m_terminal->hasEcho());
}

void PasswordPromptTest::aStoppedQuestionIsAskedAgain()
{
    ask();
    const auto process = static_cast<pid_t>(m_process->processId());
    QCOMPARE(::kill(process, SIGTSTP), 0);
    // An orphaned process group is not stopped by the terminal's signal; either way the question comes again.
    QTRY_VERIFY(m_terminal->shown().count("Password: ") == 2 || m_terminal->hasEcho());
    QCOMPARE(::kill(process, SIGCONT), 0);
    QTRY_COMPARE(m_terminal->shown().count("Password: "), 2);
    QTRY_VERIFY(!m_terminal->hasEcho());
    m_terminal->type("s3cret\n");
    QVERIFY(m_process->waitForFinished());
    QCOMPARE(m_process->exitCode(), 1);
    QVERIFY(m_terminal->hasEcho());
}

void PasswordPromptTest::aLongLineIsRefused()
{
    // A terminal has lines of less than 4096 bytes: a pipe takes its place.
    const Run call =
        run({QStringLiteral("--data"), m_data.path(), QStringLiteral("call"), QStringLiteral("addNASServer"),
             QStringLiteral("256.0.0.1"), QStringLiteral("Host"), QStringLiteral("anna"), QStringLiteral("-")},
            QByteArray(5000, 'x') + '\n');
    QCOMPARE(call.exitCode, 2);
    QCOMPARE(call.errors, QStringLiteral("recordingctl: password is longer than 4096 bytes; one line was expected\n"));
}

void PasswordPromptTest::noCoreIsWritten()
{
    ask();
    QFile limits(QStringLiteral("/proc/%1/limits").arg(m_process->processId()));
    QVERIFY(limits.open(QIODevice::ReadOnly));
    static const QRegularExpression none(QStringLiteral("Max core file size +0 +0 "));
    const QString text = QString::fromLatin1(limits.readAll());
    QVERIFY2(none.match(text).hasMatch(), qPrintable(text));
    m_terminal->type("\x03");
    QVERIFY(m_process->waitForFinished());
}

QTEST_GUILESS_MAIN(PasswordPromptTest)
#include "tst_password_prompt.moc"
