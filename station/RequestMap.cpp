#include "RequestMap.h"

#include <cmath>
#include <limits>
#include <optional>

namespace {
template<typename Type>
bool is(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<Type>();
}

std::optional<qint64> wholeNumber(const QVariant &value)
{
    if (is<int>(value) || is<qlonglong>(value) || is<uint>(value))
        return value.toLongLong();
    if (is<qulonglong>(value) && value.toULongLong() <= std::numeric_limits<qint64>::max())
        return value.toLongLong();
    constexpr double limit = 9223372036854775808.0; // 2 to the power of 63
    const double number = is<double>(value) ? value.toDouble() : limit;
    if (number >= -limit && number < limit && std::trunc(number) == number)
        return static_cast<qint64>(number);
    return {};
}

BadRequest expected(const QString &key, const char *what)
{
    return BadRequest(QStringLiteral("\"%1\" has to be %2").arg(key, QLatin1String(what)));
}
} // namespace

BadRequest::BadRequest(const QString &what)
    : std::runtime_error(what.toStdString())
{
}

RequestMap::RequestMap(const QVariant &data)
{
    if (!is<QVariantMap>(data))
        throw BadRequest(QStringLiteral("a map was expected"));
    m_map = data.toMap();
}

bool RequestMap::contains(const QString &key) const
{
    return m_map.contains(key);
}

QVariant RequestMap::value(const QString &key) const
{
    const auto entry = m_map.constFind(key);
    if (entry == m_map.constEnd())
        throw BadRequest(QStringLiteral("\"%1\" is missing").arg(key));
    return *entry;
}

QString RequestMap::string(const QString &key) const
{
    const QVariant found = value(key);
    if (!is<QString>(found))
        throw expected(key, "a string");
    return found.toString();
}

bool RequestMap::boolean(const QString &key) const
{
    const QVariant found = value(key);
    if (!is<bool>(found))
        throw expected(key, "true or false");
    return found.toBool();
}

qint64 RequestMap::integer(const QString &key) const
{
    const std::optional<qint64> number = wholeNumber(value(key));
    if (!number)
        throw expected(key, "a whole number");
    return *number;
}

int RequestMap::smallInteger(const QString &key) const
{
    const qint64 number = integer(key);
    if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max())
        throw expected(key, "a whole number of 32 bits");
    return static_cast<int>(number);
}

QStringList RequestMap::strings(const QString &key) const
{
    const QVariant found = value(key);
    if (is<QStringList>(found))
        return found.toStringList();
    if (!is<QVariantList>(found))
        throw expected(key, "a list of strings");
    QStringList strings;
    const QVariantList list = found.toList();
    for (const QVariant &element : list) {
        if (!is<QString>(element))
            throw expected(key, "a list of strings");
        strings.append(element.toString());
    }
    return strings;
}

RequestMap RequestMap::map(const QString &key) const
{
    const QVariant found = value(key);
    if (!is<QVariantMap>(found))
        throw expected(key, "a map");
    return RequestMap(found);
}

QList<RequestMap> RequestMap::maps(const QString &key) const
{
    const QVariant found = value(key);
    if (!is<QVariantList>(found))
        throw expected(key, "a list of maps");
    QList<RequestMap> maps;
    const QVariantList list = found.toList();
    for (const QVariant &element : list) {
        if (!is<QVariantMap>(element))
            throw expected(key, "a list of maps");
        maps.append(RequestMap(element));
    }
    return maps;
}
