#pragma once

#include <QJsonObject>
#include <QList>
#include <QMetaMethod>
#include <QString>
#include <QStringList>

/// An invokable of the plug-in with the shorter forms that its default arguments make.
struct Invokable
{
    QList<QMetaMethod> forms; ///< the full one first, each next one with one parameter less

    QString name() const;
    const QMetaMethod &full() const { return forms.first(); }
    qsizetype required() const { return forms.last().parameterCount(); }
    qsizetype most() const { return full().parameterCount(); }
};

/// What an object offers through its meta-object. Knows no name of its own; QObject's members are left out.
class PluginInterface
{
public:
    explicit PluginInterface(const QMetaObject &metaObject);

    const QList<Invokable> &invokables() const { return m_invokables; }
    const QList<QMetaMethod> &signalMethods() const { return m_signals; }

    /// The form of the invokable @p name that takes @p count arguments; an invalid one when there is none, and then
    /// @p error says in one line what there is.
    QMetaMethod find(const QString &name, qsizetype count, QString *error) const;
    /// The same, for a form that is known to be there or not.
    QMetaMethod find(const QString &name, qsizetype count) const;

    /// Every invokable, signal and enumeration, for a reader.
    QString toText() const;
    QJsonObject toJson() const;

private:
    QString unknownName(const QString &name) const;

    const QMetaObject &m_metaObject;
    QList<Invokable> m_invokables;
    QList<QMetaMethod> m_signals;
};

/// Which of @p names reads most like @p name; empty when none comes near.
QString closestName(const QString &name, const QStringList &names);
