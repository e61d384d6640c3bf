#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <stdexcept>

/// The data of a command is not of the shape that the command takes; the text says what was expected.
class BadRequest : public std::runtime_error
{
public:
    explicit BadRequest(const QString &what);
};

/// A map out of a command's data, read strictly: nothing is converted, a missing key or another type throws BadRequest.
/// Keys that nobody asks for are left alone.
///
/// A whole number may be of any type of numbers: a script may not be able to write another than a floating one.
class RequestMap
{
public:
    explicit RequestMap(const QVariant &data);

    bool contains(const QString &key) const;
    QString string(const QString &key) const;
    bool boolean(const QString &key) const;
    qint64 integer(const QString &key) const;
    int smallInteger(const QString &key) const; ///< of 32 bits
    QStringList strings(const QString &key) const; ///< a QStringList, or a list of strings alone
    RequestMap map(const QString &key) const;
    QList<RequestMap> maps(const QString &key) const;

private:
    QVariant value(const QString &key) const;

    QVariantMap m_map;
};
