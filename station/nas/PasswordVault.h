#pragma once

#include "KeyFile.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <stdexcept>

/// The key of the passwords cannot be used: where it lies, and what is wrong with it.
class VaultError : public std::runtime_error
{
public:
    explicit VaultError(const QString &what);
};

/// Encrypts the passwords that the station keeps, with a key in a file of its own that only the station's user may
/// read, and makes the tokens that stand for them outside the station.
class PasswordVault
{
public:
    enum class WhenMissing { Fail, Create };

    /// Reads the key from @p file: 32 bytes, a plain file of the station's user with mode 0600 or stricter; one that
    /// the system keeps may be root's and readable for a group. Throws VaultError otherwise, and leaves what is there
    /// as it is.
    /// @param whenMissing Create makes a new key, for a station that keeps no password yet; its folder must exist, and
    /// the system's keys are never made
    explicit PasswordVault(const KeyFile &file, WhenMissing whenMissing);
    explicit PasswordVault(const QString &file, WhenMissing whenMissing);
    ~PasswordVault();
    PasswordVault(const PasswordVault &) = delete;
    PasswordVault &operator=(const PasswordVault &) = delete;

    /// Another text at every call, for the same password too.
    QByteArray encrypted(const QString &password) const;
    /// The password behind @p sealed. Throws VaultError when it was damaged or encrypted with another key.
    QString decrypted(const QByteArray &sealed) const;

    /// What is given out in place of the password of the NAS server @p id: always the same, and no use for anything
    /// else. Nobody without the key can make it.
    QString token(const QString &id) const;
    /// Whether @p text is token(@p id).
    bool isToken(const QString &text, const QString &id) const;
    /// Whether @p text may be a token at all; needs no key.
    static bool looksLikeToken(const QString &text);
    /// What is given out where no token can be made, for want of the key; looks like one and is that of no server.
    static QString placeholder();

private:
    /// Memory that is not swapped out, and wiped at its end.
    struct FreeLocked
    {
        void operator()(unsigned char *memory) const;
    };
    using LockedKey = std::unique_ptr<unsigned char, FreeLocked>;

    static LockedKey lockedMemory(size_t size);
    static LockedKey readKey(const KeyFile &file);
    static LockedKey derived(const LockedKey &key, int purpose, size_t size);

    LockedKey m_passwordKey;
    LockedKey m_tokenKey;
};
