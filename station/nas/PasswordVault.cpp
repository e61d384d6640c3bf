#include "PasswordVault.h"

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

/// A file descriptor, closed at the end.
class OpenFile
{
public:
    explicit OpenFile(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~OpenFile()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

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
    QByteArray key(keySize, Qt::Uninitialized);
    crypto_kdf_keygen(raw(key));
    const bool isWritten = write(made.get(), key.constData(), keySize) == keySize && fsync(made.get()) == 0;
    wipe(key);
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

QByteArray readKey(const QString &file)
{
    const OpenFile opened(open(QFile::encodeName(file).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (opened.get() < 0 && errno == ENOENT)
        throw VaultError(QStringLiteral("The key file %1 is lost; put it back, or remove the NAS servers").arg(file));
    struct stat facts = {};
    if (opened.get() < 0 || fstat(opened.get(), &facts) != 0)
        throw systemError(QStringLiteral("The key file %1 cannot be read: %2"), file);
    if (!S_ISREG(facts.st_mode))
        throw VaultError(QStringLiteral("The key file %1 is no plain file").arg(file));
    if ((facts.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        throw VaultError(QStringLiteral("The key file %1 may be read by others: its mode is %2, expected 0600")
                             .arg(file, u'0' + QString::number(facts.st_mode & 07777, 8)));
    }
    if (facts.st_size != keySize) {
        throw VaultError(
            QStringLiteral("The key file %1 has %2 bytes, expected %3").arg(file).arg(facts.st_size).arg(keySize));
    }
    QByteArray key(keySize, '\0');
    if (read(opened.get(), key.data(), keySize) != keySize)
        throw systemError(QStringLiteral("The key file %1 cannot be read: %2"), file);
    return key;
}

QByteArray derived(const QByteArray &key, int purpose, size_t size)
{
    QByteArray part(static_cast<qsizetype>(size), Qt::Uninitialized);
    crypto_kdf_derive_from_key(raw(part), size, static_cast<uint64_t>(purpose), derivation, raw(key));
    return part;
}
} // namespace

VaultError::VaultError(const QString &what)
    : std::runtime_error(what.toStdString())
{
}

PasswordVault::PasswordVault(const QString &file, WhenMissing whenMissing)
{
    if (sodium_init() < 0)
        throw VaultError(QStringLiteral("libsodium cannot be used"));
    if (whenMissing == WhenMissing::Create && !QFileInfo(file).exists() && !QFileInfo(file).isSymLink())
        createKey(file);
    QByteArray key = readKey(file);
    m_passwordKey = derived(key, purposePasswords, crypto_secretbox_KEYBYTES);
    m_tokenKey = derived(key, purposeTokens, crypto_auth_KEYBYTES);
    wipe(key);
}

PasswordVault::~PasswordVault()
{
    wipe(m_passwordKey);
    wipe(m_tokenKey);
}

QByteArray PasswordVault::encrypted(const QString &password) const
{
    QByteArray plain = password.toUtf8();
    QByteArray nonce(crypto_secretbox_NONCEBYTES, Qt::Uninitialized);
    randombytes_buf(nonce.data(), static_cast<size_t>(nonce.size()));
    QByteArray box(static_cast<qsizetype>(crypto_secretbox_MACBYTES) + plain.size(), Qt::Uninitialized);
    crypto_secretbox_easy(raw(box), raw(std::as_const(plain)), length(plain), raw(std::as_const(nonce)),
                          raw(m_passwordKey));
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
        || crypto_secretbox_open_easy(raw(plain), raw(box), length(box), raw(nonce), raw(m_passwordKey)) != 0)
        throw VaultError(QStringLiteral("A stored password was encrypted with another key, or is damaged"));
    const QString password = QString::fromUtf8(plain);
    wipe(plain);
    return password;
}

QString PasswordVault::token(const QString &id) const
{
    const QByteArray text = id.toUtf8();
    QByteArray seal(crypto_auth_BYTES, Qt::Uninitialized);
    crypto_auth(raw(seal), raw(text), length(text), raw(m_tokenKey));
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
