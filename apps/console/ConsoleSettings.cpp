#include "ConsoleSettings.h"

#include <QJSValue>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>

#include <cstdio>

namespace {
// A document holds no lone value.
QString jsonText(const QVariant &value)
{
    const QVariant plain =
        value.metaType() == QMetaType::fromType<QJSValue>() ? value.value<QJSValue>().toVariant() : value;
    return QString::fromUtf8(QJsonDocument(QJsonArray{QJsonValue::fromVariant(plain)}).toJson(QJsonDocument::Compact));
}

QJsonValue jsonValue(const QString &text)
{
    return QJsonDocument::fromJson(text.toUtf8()).array().at(0);
}
} // namespace

ConsoleSettings::ConsoleSettings(QObject *parent)
    : QObject(parent)
{
}

ConsoleSettings::ConsoleSettings(const QString &file, QObject *parent)
    : QObject(parent)
    , m_file(file.isEmpty() ? nullptr : std::make_unique<QSettings>(file, QSettings::IniFormat))
{
}

ConsoleSettings::~ConsoleSettings()
{
    if (!m_file)
        return;
    m_file->sync();
    if (m_file->status() != QSettings::NoError)
        std::fputs(qPrintable(QStringLiteral("What the console should remember could not be written to %1.\n")
                                  .arg(m_file->fileName())),
                   stderr);
}

QString ConsoleSettings::userFile()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return folder.isEmpty() ? QString() : folder + QStringLiteral("/recording-console.ini");
}

QVariant ConsoleSettings::value(const QString &key, const QVariant &otherwise) const
{
    const QString text = m_file ? m_file->value(key).toString() : m_values.value(key);
    const QJsonValue value = jsonValue(text);
    return value.type() == jsonValue(jsonText(otherwise)).type() ? value.toVariant() : otherwise;
}

void ConsoleSettings::setValue(const QString &key, const QVariant &value)
{
    if (m_file)
        m_file->setValue(key, jsonText(value));
    else
        m_values.insert(key, jsonText(value));
}
