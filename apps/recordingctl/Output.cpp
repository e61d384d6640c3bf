#include "Output.h"

#include "TextTable.h"

#include <QJsonDocument>

#include <cstdio>

namespace {

void write(std::FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

QString trimmedJson(const QJsonDocument &document, QJsonDocument::JsonFormat format)
{
    return QString::fromUtf8(document.toJson(format)).trimmed();
}

} // namespace

void printLine(const QString &text)
{
    write(stdout, text + u'\n');
}

void printText(const QString &text)
{
    write(stdout, text);
}

bool isOutputLost()
{
    return std::ferror(stdout) != 0;
}

void printError(const QString &message)
{
    write(stderr, QStringLiteral("recordingctl: %1\n").arg(printable(message)));
}

QString indentedJson(const QJsonObject &object)
{
    return trimmedJson(QJsonDocument(object), QJsonDocument::Indented);
}

QString compactJson(const QJsonObject &object)
{
    return trimmedJson(QJsonDocument(object), QJsonDocument::Compact);
}
