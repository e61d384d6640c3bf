#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>
#include <stdexcept>

/// A table of roles that cannot be used: "FILE:LINE: what is wrong, what was expected".
class RolesError : public std::runtime_error
{
public:
    explicit RolesError(const QString &text)
        : std::runtime_error(text.toStdString())
    {
    }
    QString text() const { return QString::fromUtf8(what()); }
};

/// What the broker's users may do at a station.
enum class BrokerRole {
    Nobody, ///< no command is taken
    Viewer, ///< may look
    Operator, ///< may do everything
};

/// The station's own table of roles.
class BrokerRoles
{
public:
    /// Without a table, everybody whom the broker lets in is an operator.
    BrokerRoles() = default;

    /// The table in the lines of @p bytes, UTF-8: "USER = viewer" or "USER = operator", "*" for everybody who is not
    /// named, clients without a user name among them; or a comment that begins with "#". Who is not named, and there is
    /// no
    /// "*", is nobody. Throws RolesError.
    /// @param file the name that errors give
    static BrokerRoles parse(const QByteArray &bytes, const QString &file);
    /// The table in @p file. Throws RolesError, also where the file cannot be read.
    static BrokerRoles read(const QString &file);

    /// @param user as the broker vouches for it; empty: a client without a user name
    BrokerRole of(const QString &user) const;

private:
    QHash<QString, BrokerRole> m_roles;
    BrokerRole m_others = BrokerRole::Operator;
};
