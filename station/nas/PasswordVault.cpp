#include "PasswordVault.h"

#include "files/OpenFile.h"

#include <QFile>
#include <QFileInfo>

#include <sodium.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr qsizetype keySize = crypto_kdf_KEYBYTES;
constexpr int purposePasswords = 1;
constexpr int purposeTokens = 2;
constexpr char derivation[crypto_kdf_CONTEXTBYTES + 1] = "nasvault";
constexpr auto tokenPrefix = "nas-password-token:";

unsigned char *raw(QByteArray &bytes)
{
    return reinterpret_cast<unsigned char *>(bytes.data());
}

const unsigned char *raw(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

auto length(const QByteArray &bytes)
{
    return static_cast<unsigned long long>(bytes.size());
}

void wipe(QByteArray &bytes)
{
    sodium_memzero(bytes.data(), static_cast<size_t>(bytes.size()));
}

VaultError systemError(const QString &text, const QString &file)
{
    return VaultError(text.arg(file, qt_error_string(errno)));
}

/// Makes a key under another name first, so that a file with this name is always whole. Keeps one that is there by now.
void createKey(const QString &file)
{
    const QString failure = QStringLiteral("The key file %1 cannot be made: %2");
    QByteArray pattern = QFile::encodeName(file) + ".XXXXXX";
    const OpenFile made(mkostemp(pattern.data(), O_CLOEXEC)); // mode 0600
    if (made.get() < 0)
        throw systemError(failure, file);
    unsigned char key[keySize];
    crypto_kdf_keygen(key);
    const bool isWritten = write(made.get(), key, keySize) == keySize && fsync(made.get()) == 0;
    sodium_memzero(key, keySize);
    const bool isPlaced =
        isWritten && (link(pattern.constData(), QFile::encodeName(file).constData()) == 0 || errno == EEXIST);
    const int error = errno;
    unlink(pattern.constData());
    errno = error;
    if (!isPlaced)
        throw systemError(failure, file);
    const OpenFile folder(open(QFile::encodeName(QFileInfo(file).path()).constData(), O_RDONLY | O_CLOEXEC));
    fsync(folder.get());
}

/// Why the key may be known to others, or not be the station's; empty when it is as it should be.
QString objection(const struct stat &facts, const KeyFile &file)
{
    const bool isSystems = file.keeper == KeyFile::Keeper::System;
    const QString mode = u'0' + QString::number(facts.st_mode & 07777, 8);
    const mode_t forbidden = isSystems ? S_IWGRP | S_IXGRP | S_IRWXO : S_IRWXG | S_IRWXO;
    if (!S_ISREG(facts.st_mode))
        return QStringLiteral("The key file %1 is no plain file").arg(file.path);
    if (facts.st_uid != geteuid() && !(isSystems && facts.st_uid == 0)) {
        return QStringLiteral("The key file %1 belongs to the user %2, expected %3, as whom the station runs")
            .arg(file.path)
            .arg(facts.st_uid)
            .arg(geteuid());
    }
    if ((facts.st_mode & forbidden) != 0) {
        return QStringLiteral("The key file %1 may be read by others: its mode is %2, expected %3")
            .arg(file.path, mode, isSystems ? QStringLiteral("0440 or 0400") : QStringLiteral("0600"));
    }
    if (facts.st_size != keySize)
        return QStringLiteral("The key file %1 has %2 bytes, expected %3")
            .arg(file.path)
            .arg(facts.st_size)
            .arg(keySize);
    return {};
}
} // namespace

VaultError::VaultError(const QString &what)
    : std::runtime_error(what.toStdString())
{
}

PasswordVault::PasswordVault(const QString &file, WhenMissing whenMissing)
    : PasswordVault(KeyFile{file}, whenMissing)
{
}

PasswordVault::PasswordVault(const KeyFile &file, WhenMissing whenMissing)
{
    if (sodium_init() < 0)
        throw VaultError(QStringLiteral("libsodium cannot be used"));
    const QFileInfo info(file.path);
    const bool isMade = whenMissing == WhenMissing::Create && file.keeper == KeyFile::Keeper::Station;
    if (isMade && !info.exists() && !info.isSymLink())
        createKey(file.path);
    const LockedKey key = readKey(file);
    m_passwordKey = derived(key, purposePasswords, crypto_secretbox_KEYBYTES);
    m_tokenKey = derived(key, purposeTokens, crypto_auth_KEYBYTES);
}

PasswordVault::~PasswordVault() = default;

void PasswordVault::FreeLocked::operator()(unsigned char *memory) const
{
    sodium_free(memory);
}

PasswordVault::LockedKey PasswordVault::lockedMemory(size_t size)
{
    LockedKey memory(static_cast<unsigned char *>(sodium_malloc(size)));
    if (!memory)
        throw VaultError(QStringLiteral("There is no memory for the key of the stored passwords"));
    return memory;
}

PasswordVault::LockedKey PasswordVault::readKey(const KeyFile &file)
{
    const QString &path = file.path;
    const OpenFile opened(open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (opened.get() < 0 && errno == ENOENT)
        throw VaultError(QStringLiteral("The key file %1 is lost; put it back, or remove the NAS servers").arg(path));
    struct stat facts = {};
    if (opened.get() < 0 || fstat(opened.get(), &facts) != 0)
        throw systemError(QStringLiteral("The key file %1 cannot be read: %2"), path);
    if (const QString wrong = objection(facts, file); !wrong.isEmpty())
        throw VaultError(wrong);
    LockedKey key = lockedMemory(keySize);
    if (read(opened.get(), key.get(), keySize) != keySize)
        throw systemError(QStringLiteral("The key file %1 cannot be read: %2"), path);
    return key;
}

PasswordVault::LockedKey PasswordVault::derived(const LockedKey &key, int purpose, size_t size)
{
    LockedKey part = lockedMemory(size);
    crypto_kdf_derive_from_key(part.get(), size, static_cast<uint64_t>(purpose), derivation, key.get());
    return part;
}

QByteArray PasswordVault::encrypted(const QString &password) const
{
    QByteArray plain = password.toUtf8();
    QByteArray nonce(crypto_secretbox_NONCEBYTES, Qt::Uninitialized);
    randombytes_buf(nonce.data(), static_cast<size_t>(nonce.size()));
    QByteArray box(static_cast<qsizetype>(crypto_secretbox_MACBYTES) + plain.size(), Qt::Uninitialized);
    crypto_secretbox_easy(raw(box), raw(std::as_const(plain)), length(plain), raw(std::as_const(nonce)),
                          m_passwordKey.get());
    wipe(plain);
    return nonce + box;
}

QString PasswordVault::decrypted(const QByteArray &sealed) const
{
    const QByteArray nonce = sealed.left(crypto_secretbox_NONCEBYTES);
    const QByteArray box = sealed.mid(crypto_secretbox_NONCEBYTES);
    const auto overhead = static_cast<qsizetype>(crypto_secretbox_MACBYTES);
    QByteArray plain(std::max<qsizetype>(box.size() - overhead, 0), Qt::Uninitialized);
    if (box.size() < overhead
        || crypto_secretbox_open_easy(raw(plain), raw(box), length(box), raw(nonce), m_passwordKey.get()) != 0)
        throw VaultError(QStringLiteral("A stored password was encrypted with another key, or is damaged"));
    const QString password = QString::fromUtf8(plain);
    wipe(plain);
    return password;
}

QString PasswordVault::token(const QString &id) const
{
    const QByteArray text = id.toUtf8();
    QByteArray seal(crypto_auth_BYTES, Qt::Uninitialized);
    crypto_auth(raw(seal), raw(text), length(text), m_tokenKey.get());
    return QString::fromLatin1(tokenPrefix + seal.toBase64(QByteArray::Base64UrlEncoding));
}

bool PasswordVault::isToken(const QString &text, const QString &id) const
{
    const QByteArray given = text.toUtf8();
    const QByteArray expected = token(id).toUtf8();
    return given.size() == expected.size()
        && sodium_memcmp(given.constData(), expected.constData(), static_cast<size_t>(expected.size())) == 0;
}

bool PasswordVault::looksLikeToken(const QString &text)
{
    return text.startsWith(QLatin1String(tokenPrefix));
}

QString PasswordVault::placeholder()
{
    return QLatin1String(tokenPrefix) + QStringLiteral("unreadable");
}
