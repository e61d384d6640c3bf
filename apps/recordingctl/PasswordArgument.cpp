#include "PasswordArgument.h"

#include <QFile>

#include <cstdio>
#include <iostream>
#include <string>

#include <termios.h>
#include <unistd.h>

namespace {

/// Keeps what is typed on the terminal from being shown, until it ends.
class HiddenInput
{
public:
    HiddenInput()
    {
        tcgetattr(STDIN_FILENO, &m_before);
        termios hidden = m_before;
        // An interrupt would leave the terminal without echo: it arrives as a character instead.
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    }
    ~HiddenInput() { tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before); }
    HiddenInput(const HiddenInput &) = delete;
    HiddenInput &operator=(const HiddenInput &) = delete;

private:
    termios m_before{};
};

QString firstLine(QByteArray line)
{
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return QString::fromLocal8Bit(line);
}

ConvertedArgument fromStandardInput(const QString &parameter)
{
    constexpr char interrupt = '\x03';
    std::string line;
    if (isatty(STDIN_FILENO)) {
        std::cerr << "Password: " << std::flush;
        const HiddenInput hidden;
        std::getline(std::cin, line);
        std::cerr << std::endl;
    } else {
        std::getline(std::cin, line);
    }
    if (!std::cin || line.find(interrupt) != std::string::npos)
        return {{}, QStringLiteral("%1 was to be read from standard input, but no line came").arg(parameter)};
    return {firstLine(QByteArray::fromStdString(line)), {}};
}

ConvertedArgument fromFile(const QString &name, const QString &parameter)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return {{},
                QStringLiteral("%1 was to be read from the file \"%2\": %3").arg(parameter, name, file.errorString())};
    return {firstLine(file.readLine()), {}};
}

} // namespace

ConvertedArgument passwordArgument(const QString &text, const QString &parameter)
{
    if (text.isEmpty())
        return {text, {}};
    if (text == QStringLiteral("-"))
        return fromStandardInput(parameter);
    if (text == QStringLiteral("@"))
        return {{}, QStringLiteral("%1 is @ alone; the name of a file was expected behind it").arg(parameter)};
    if (text.startsWith(u'@'))
        return fromFile(text.mid(1), parameter);
    return {{},
            QStringLiteral("%1 must not stand on the command line, where everyone on this machine can read it; give - "
                           "to read it from standard input, or @FILE to read it from a file")
                .arg(parameter)};
}
