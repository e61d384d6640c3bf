#include "JsonFields.h"

#include "ValueText.h"

#include <QDateTime>
#include <QJsonArray>
#include <QUuid>

#include <algorithm>
#include <iterator>

namespace {

enum class Form {
    Plain,
    Truth, ///< false where it is missing
    Number, ///< negative: not known
    Kilobytes, ///< likewise
    Size, ///< KB of a volume; 0: not known
    Available, ///< KB on that volume
    Time,
    Secret,
};

struct Field
{
    const char *scope; ///< empty: any
    const char *name;
    const char *key; ///< in JSON
    Form form;
};

constexpr Field fields[] = {
    // What the figures were; they come before the same words of others.
    {"station.readHistory", "time", "time", Form::Time},
    {"station.readHistory", "from", "from", Form::Time},
    {"station.readHistory", "until", "until", Form::Time},
    {"station.readHistory", "volumeSize", "sizeBytes", Form::Size},
    {"station.readHistory", "volumeAvailableSize", "availableBytes", Form::Available},
    {"station.readHistory", "recordingGroupReservedTime", "reservedTimeMinutes", Form::Number},
    // Who edited what.
    {"station.listActivity", "time", "time", Form::Time},
    {"station.listActivity", "recordingGroupID", "groupId", Form::Plain},
    {"station.listActivity", "recordingGroupName", "groupName", Form::Plain},
    {"station.listActivity", "returnCode", "returnCode", Form::Plain},
    {"station.listActivity", "duration", "durationMilliseconds", Form::Number},
    // Volumes.
    {"", "size", "sizeBytes", Form::Size},
    {"", "availableSize", "availableBytes", Form::Available},
    {"", "volumeSize", "volumeSizeBytes", Form::Size},
    {"", "volumeAvailableSize", "volumeAvailableBytes", Form::Available},
    {"", "volumeOneDayUsage", "volumeOneDayUsageBytes", Form::Number},
    {"", "volumeRecordedDays", "volumeRecordedDays", Form::Number},
    {"", "volumeIsSystem", "volumeIsSystem", Form::Truth},
    {"", "volumeIsNAS", "volumeIsNas", Form::Truth},
    {"", "rootPath", "path", Form::Plain},
    {"", "isSystem", "isSystem", Form::Truth},
    {"", "isNAS", "isNas", Form::Truth},
    {"", "diskTotal", "diskTotalBytes", Form::Kilobytes},
    {"", "diskUsed", "diskUsedBytes", Form::Kilobytes},
    {"getNASServerCapacityResponded", "total", "totalBytes", Form::Kilobytes},
    {"getNASServerCapacityResponded", "used", "usedBytes", Form::Kilobytes},
    // Recording groups.
    {"", "recordedDays", "recordedDays", Form::Number},
    {"", "remainDays", "remainingDays", Form::Number},
    {"", "remainingDays", "remainingDays", Form::Number},
    {"", "oneDayUsage", "oneDayUsageBytes", Form::Number},
    {"", "reserveTime", "reservedTimeMinutes", Form::Number},
    {"", "reservedTime", "reservedTimeMinutes", Form::Number},
    {"", "recordingGroupReservedTime", "recordingGroupReservedTimeMinutes", Form::Number},
    {"", "reserveSpace", "reservedSpaceMegabytes", Form::Number},
    {"", "isRecoveryMode", "isRecoveryMode", Form::Truth},
    {"", "streamIndexHasBeenSetTmShiftSeamlessInOtherRecGroups", "result", Form::Number},
    // What was refused of an edit.
    {"", "index", "index", Form::Number},
    {"", "returnCode", "code", Form::Plain},
    // The count of the recorded files.
    {"StorageScanProgress", "done", "doneFiles", Form::Number},
    {"StorageScanProgress", "total", "totalFiles", Form::Number},
    {"station.DeletionProgress", "done", "deletedFiles", Form::Number},
    {"station.DeletionProgress", "total", "totalFiles", Form::Number},
    {"", "leftEntries", "leftEntries", Form::Number},
    {"", "begunAt", "begunAt", Form::Time},
    {"", "endedAt", "endedAt", Form::Time},
    {"", "acknowledgedAt", "acknowledgedAt", Form::Time},
    {"", "until", "until", Form::Time},
    {"", "since", "since", Form::Time},
    {"", "countedAt", "countedAt", Form::Time},
    {"", "password", "password", Form::Secret},
};

/// What @p name is where no row says it.
Form formOfName(const QString &name)
{
    for (const char *unit : {"Bytes", "Megabytes", "Minutes", "Days", "Files"}) {
        if (name.endsWith(QLatin1String(unit)))
            return Form::Number;
    }
    return Form::Plain;
}

const Field *fieldOf(const QString &name, const QString &scope)
{
    const auto *const field = std::find_if(std::begin(fields), std::end(fields), [&](const Field &row) {
        return name == QLatin1String(row.name) && (*row.scope == '\0' || scope == QLatin1String(row.scope));
    });
    return field == std::end(fields) ? nullptr : field;
}

Form formOf(const QString &name, const QString &scope)
{
    const Field *field = fieldOf(name, scope);
    return field ? field->form : formOfName(name);
}

QJsonValue numberJson(const QVariant &value, qlonglong factor = 1)
{
    if (value.typeId() == QMetaType::QVariantList) {
        QJsonArray numbers;
        const QVariantList list = value.toList();
        for (const QVariant &number : list)
            numbers.append(numberJson(number, factor));
        return numbers;
    }
    const qlonglong number = value.toLongLong();
    return !value.isValid() || number < 0 ? QJsonValue() : QJsonValue(number * factor);
}

QJsonValue formed(const QVariant &value, Form form, const QString &scope, bool isVolumeKnown)
{
    constexpr qlonglong kilobyte = 1024;
    switch (form) {
    case Form::Truth:
        return value.toBool();
    case Form::Number:
        return numberJson(value);
    case Form::Kilobytes:
        return numberJson(value, kilobyte);
    case Form::Size:
    case Form::Available:
        return isVolumeKnown ? numberJson(value, kilobyte) : QJsonValue();
    case Form::Time:
        return timeJson(value.typeId() == QMetaType::QDateTime
                            ? value.toDateTime()
                            : QDateTime::fromString(value.toString(), Qt::ISODateWithMs));
    case Form::Secret:
        return value.toString().isEmpty() ? QJsonValue() : QJsonValue(QStringLiteral("********"));
    case Form::Plain:
        break;
    }
    return plainJson(value, scope);
}

} // namespace

QJsonValue timeJson(const QDateTime &time)
{
    return time.isValid() ? QJsonValue(time.toUTC().toString(Qt::ISODateWithMs)) : QJsonValue();
}

QJsonValue textJson(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonValue plainJson(const QVariant &value, const QString &scope)
{
    if (enumerationOf(value.metaType()).isValid())
        return valueText(value);
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::QUuid:
        return textJson(value.toString());
    case QMetaType::QStringList:
        return QJsonArray::fromStringList(value.toStringList());
    case QMetaType::QVariantList: {
        QJsonArray array;
        const QVariantList list = value.toList();
        for (const QVariant &element : list)
            array.append(plainJson(element, scope));
        return array;
    }
    case QMetaType::QVariantMap:
        return fieldsJson(value.toMap(), scope);
    case QMetaType::QDateTime:
        return timeJson(value.toDateTime());
    case QMetaType::QObjectStar:
        return {};
    default:
        return QJsonValue::fromVariant(value);
    }
}

QJsonObject fieldsJson(const QVariantMap &fields, const QString &scope)
{
    bool isVolumeKnown = true;
    for (auto entry = fields.cbegin(); entry != fields.cend(); ++entry) {
        if (formOf(entry.key(), scope) == Form::Size)
            isVolumeKnown = isVolumeKnown && entry->toLongLong() > 0;
    }
    QJsonObject object;
    for (auto entry = fields.cbegin(); entry != fields.cend(); ++entry) {
        const Field *field = fieldOf(entry.key(), scope);
        object.insert(field ? QLatin1String(field->key) : entry.key(),
                      formed(*entry, formOf(entry.key(), scope), scope, isVolumeKnown));
    }
    return object;
}
