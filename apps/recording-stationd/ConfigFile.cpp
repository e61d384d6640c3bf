#include "ConfigFile.h"

#include "PrintableText.h"

#include <QFile>
#include <QHash>
#include <QStringDecoder>
#include <QStringList>

#include <algorithm>

namespace {
constexpr qint64 largestFile = 1024 * 1024; // bytes

[[noreturn]] void fail(const QString &file, qsizetype line, const QString &what)
{
    throw ConfigError(QStringLiteral("%1:%2: %3").arg(file).arg(line).arg(what));
}

QString knownNames()
{
    QStringList names;
    for (const ConfigKey &key : configKeys())
        names.append(key.name);
    return names.join(QStringLiteral(", "));
}

const ConfigKey *keyOf(const QString &name)
{
    const auto keys = configKeys();
    const auto found =
        std::find_if(keys.begin(), keys.end(), [&name](const ConfigKey &key) { return key.name == name; });
    return found == keys.end() ? nullptr : &*found;
}

bool isPrintableText(const QString &text)
{
    return printable(text) == text;
}
} // namespace

StationConfig parseConfig(const QByteArray &bytes, const QString &file)
{
    StationConfig config;
    QHash<QString, qsizetype> seen; // the line of each key
    const QList<QByteArray> lines = bytes.split('\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const qsizetype number = i + 1;
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString decoded = decoder.decode(lines.at(i));
        if (decoder.hasError())
            fail(file, number, QStringLiteral("the line is no valid UTF-8"));
        const QString line = decoded.trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        const qsizetype sign = line.indexOf(u'=');
        if (sign < 0)
            fail(
                file, number,
                QStringLiteral("\"%1\" is no setting, expected \"key = value\" or \"# comment\"").arg(printable(line)));
        const QString name = line.left(sign).trimmed();
        const QString value = line.mid(sign + 1).trimmed();
        const ConfigKey *const key = keyOf(name);
        if (!key)
            fail(file, number,
                 QStringLiteral("unknown key \"%1\", expected one of %2").arg(printable(name), knownNames()));
        if (seen.contains(name))
            fail(file, number,
                 QStringLiteral("%1 is set twice, first in line %2; expected one setting")
                     .arg(name)
                     .arg(seen.value(name)));
        if (value.isEmpty() || !isPrintableText(value) || !key->take(config, value))
            fail(file, number, QStringLiteral("%1 is \"%2\", expected %3").arg(name, printable(value), key->expected));
        seen.insert(name, number);
    }
    return config;
}

StationConfig readConfig(const QString &file)
{
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly))
        throw ConfigError(QStringLiteral("%1: the file cannot be read: %2").arg(file, opened.errorString()));
    const QByteArray bytes = opened.read(largestFile + 1);
    if (opened.error() != QFileDevice::NoError)
        throw ConfigError(QStringLiteral("%1: the file cannot be read: %2").arg(file, opened.errorString()));
    if (bytes.size() > largestFile)
        throw ConfigError(QStringLiteral("%1: the file is too large, expected at most 1 MB").arg(file));
    return parseConfig(bytes, file);
}
