#include "PasswordArgument.h"

#include "PasswordPrompt.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qsizetype longestLine = 4096; // bytes

/// Wiped at its end.
class Line
{
public:
    Line() { m_bytes.reserve(longestLine + 1); } // a buffer that grows leaves copies behind
    explicit Line(const QByteArray &bytes)
        : Line()
    {
        m_bytes.append(bytes);
    }
    ~Line() { explicit_bzero(m_bytes.data(), static_cast<std::size_t>(m_bytes.size())); }
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    /// Reads to the end of the line; false when it is too long, or nothing came.
    bool readFrom(int file)
    {
        char byte = 0;
        while (true) {
            const ssize_t count = read(file, &byte, 1);
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                return count == 0 && !m_bytes.isEmpty();
            if (byte == '\n')
                return true;
            if (m_bytes.size() == longestLine) {
                m_isTooLong = true;
                return false;
            }
            m_bytes.append(byte);
        }
    }
    bool isTooLong() const { return m_isTooLong; }

    QString text() const
    {
        qsizetype size = m_bytes.size();
        while (size > 0 && (m_bytes.at(size - 1) == '\n' || m_bytes.at(size - 1) == '\r'))
            --size;
        return QString::fromLocal8Bit(QByteArrayView(m_bytes).first(size));
    }

private:
    QByteArray m_bytes;
    bool m_isTooLong = false;
};

ConvertedArgument tooLong(const QString &parameter)
{
    return {{}, QStringLiteral("%1 is longer than %2 bytes; one line was expected").arg(parameter).arg(longestLine)};
}

ConvertedArgument fromStandardInput(const QString &parameter)
{
    const ConvertedArgument nothing{
        {}, QStringLiteral("%1 was to be read from standard input, but no line came").arg(parameter)};
    if (isatty(STDIN_FILENO) != 0) {
        std::optional<QByteArray> typed = askHidden("Password: ", longestLine);
        if (!typed)
            return nothing;
        const Line line(*typed);
        explicit_bzero(typed->data(), static_cast<std::size_t>(typed->size()));
        return {line.text(), {}};
    }
    Line line;
    if (line.readFrom(STDIN_FILENO))
        return {line.text(), {}};
    return line.isTooLong() ? tooLong(parameter) : nothing;
}

ConvertedArgument fromFile(const QString &name, const QString &parameter)
{
    const auto refused = [&](const QString &reason) -> ConvertedArgument {
        return {{}, QStringLiteral("%1 was to be read from the file \"%2\": %3").arg(parameter, name, reason)};
    };
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return refused(file.errorString());
    struct stat facts = {};
    if (fstat(file.handle(), &facts) != 0 || !(S_ISREG(facts.st_mode) || S_ISFIFO(facts.st_mode)))
        return refused(QStringLiteral("it is neither a plain file nor a pipe"));
    Line line;
    errno = 0;
    if (line.readFrom(file.handle()))
        return {line.text(), {}};
    if (line.isTooLong())
        return tooLong(parameter);
    return errno == 0 ? ConvertedArgument{QString(), {}} : refused(qt_error_string(errno));
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
