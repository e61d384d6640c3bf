#include "SmbClient.h"

#include "NameOrder.h"
#include "SmbLibrary.h"
#include "StationProtocol.h"

#include <QUuid>

#include <libsmbclient.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include <fcntl.h>
#include <netdb.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace {
/// libsmbclient takes each of the three words into a buffer of this size and cuts off what is longer.
constexpr qsizetype longestWord = 255;

constexpr int mostRepeats = 3; // of a call that stumbled

struct Words
{
    QByteArray domain;
    QByteArray userName;
    QByteArray password;
};

Words wordsOf(const SmbLogon &logon)
{
    const bool isServersOwn = logon.domain.compare(QStringLiteral("Host"), Qt::CaseInsensitive) == 0;
    const bool isGuest = logon.userName.compare(QStringLiteral("Guest"), Qt::CaseInsensitive) == 0;
    if (isGuest && logon.password.isEmpty())
        return {};
    return {isServersOwn ? QByteArray() : logon.domain.toUtf8(), logon.userName.toUtf8(), logon.password.toUtf8()};
}

void giveWords(SMBCCTX *context, const char *, const char *, char *domain, int domainSize, char *user, int userSize,
               char *password, int passwordSize)
{
    const auto *words = static_cast<const Words *>(smbc_getOptionUserData(context));
    qstrncpy(domain, words->domain.constData(), static_cast<size_t>(domainSize));
    qstrncpy(user, words->userName.constData(), static_cast<size_t>(userSize));
    qstrncpy(password, words->password.constData(), static_cast<size_t>(passwordSize));
}

bool isSilence(int error)
{
    constexpr int silences[] = {ETIMEDOUT,   ECONNREFUSED, ECONNRESET, ECONNABORTED, EHOSTUNREACH, EHOSTDOWN,
                                ENETUNREACH, ENETDOWN,     ENOTCONN,   EPIPE,        ENXIO};
    return std::find(std::begin(silences), std::end(silences), error) != std::end(silences);
}

/// While several threads log on at once, the library now and then reports one of these though nothing is wrong.
bool isStumble(int error)
{
    return error == EINVAL || error == ENOMEM;
}

bool isRefusal(int error)
{
    return error == EACCES || error == EPERM;
}

/// The system's number for a host that nobody knows.
int findHost(const QString &host)
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    if (getaddrinfo(host.toLatin1().constData(), nullptr, &hints, &found) != 0)
        return EHOSTUNREACH;
    freeaddrinfo(found);
    return 0;
}

QString writeFailure(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return StationReturnCode::PermissionDenied;
    case EROFS:
        return StationReturnCode::VolumeReadOnly;
    case ENOSPC:
    case EDQUOT:
        return StationReturnCode::VolumeFull;
    default:
        return StationReturnCode::CannotCreate;
    }
}
} // namespace

struct SmbClient::Context
{
    Words words;
    SmbLibrary::Turn turn;
    SMBCCTX *handle = nullptr;

    Context(const SmbLogon &logon, std::chrono::milliseconds timeout);
    ~Context() { smbc_free_context(handle, 1); }
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;
};

SmbClient::Context::Context(const SmbLogon &logon, std::chrono::milliseconds timeout)
    : words(wordsOf(logon))
{
    const std::lock_guard lock(SmbLibrary::creation());
    handle = smbc_new_context();
    if (!handle)
        throw std::bad_alloc();
    smbc_setTimeout(handle, static_cast<int>(timeout.count()));
    smbc_setOptionUserData(handle, &words);
    smbc_setFunctionAuthDataWithContext(handle, giveWords);
    smbc_setOptionUseKerberos(handle, 0);
    smbc_setOptionUseCCache(handle, 0);
    smbc_setOptionNoAutoAnonymousLogin(handle, words.userName.isEmpty() ? 0 : 1);
    if (!smbc_init_context(handle)) {
        smbc_free_context(handle, 1);
        throw std::bad_alloc();
    }
}

SmbClient::SmbClient(const SmbLogon &logon, std::chrono::milliseconds timeout)
{
    SmbLibrary::prepare();
    m_context = std::make_unique<Context>(logon, timeout);
}

SmbClient::~SmbClient() = default;

int SmbClient::attempt(const SmbPath &place, const std::function<int()> &call)
{
    const Words &words = m_context->words;
    if (std::max({words.domain.size(), words.userName.size(), words.password.size()}) > longestWord)
        return EACCES;
    if (const int error = findHost(place.host))
        return error;
    int error = call();
    for (int again = 0; isStumble(error) && again < mostRepeats; ++again)
        error = call();
    if (!isSilence(error))
        m_context->turn.serverAnswered();
    return error;
}

QString SmbClient::refusal(int error, const SmbPath &place, const QString &code)
{
    if (isSilence(error))
        return StationReturnCode::NasServerNotResponding;
    if (!isRefusal(error))
        return code;
    // A refused log-on and a folder that this user may not read have the same number.
    const QString logOnCode = logOn(place);
    return logOnCode == StationReturnCode::Success ? code : logOnCode;
}

int SmbClient::list(const SmbPath &place, const Entry &entry)
{
    return attempt(place, [&] {
        SMBCCTX *const handle = m_context->handle;
        SMBCFILE *const folder = smbc_getFunctionOpendir(handle)(handle, place.url().constData());
        if (!folder)
            return errno;
        while (const smbc_dirent *found = smbc_getFunctionReaddir(handle)(handle, folder))
            entry(found->smbc_type, QString::fromUtf8(static_cast<const char *>(found->name), -1));
        smbc_getFunctionClosedir(handle)(handle, folder);
        return 0;
    });
}

QString SmbClient::logOn(const SmbPath &place)
{
    SmbPath server;
    server.host = place.host;
    server.port = place.port;
    const int error = list(server, [](unsigned int, const QString &) {});
    if (isSilence(error))
        return StationReturnCode::NasServerNotResponding;
    return error == 0 ? StationReturnCode::Success : StationReturnCode::LogonNASServerFaled;
}

SmbFolders SmbClient::folders(const SmbPath &place)
{
    QStringList dots;
    QStringList names;
    const int error = list(place, [&](unsigned int type, const QString &name) {
        if (type == SMBC_DIR && (name == QStringLiteral(".") || name == QStringLiteral("..")))
            dots.append(name);
        else if (type == SMBC_DIR || (type == SMBC_FILE_SHARE && !name.endsWith(u'$')))
            names.append(name);
    });
    if (error != 0)
        return {refusal(error, place, StationReturnCode::GetNasDirFailed), {}};
    std::sort(names.begin(), names.end(), nameLess);
    return {StationReturnCode::Success, dots + names};
}

SmbSpace SmbClient::space(const SmbPath &folder)
{
    struct statvfs figures = {};
    const int error = folder.share.isEmpty() ? ENOENT : attempt(folder, [&] {
        SMBCCTX *const handle = m_context->handle;
        QByteArray url = folder.url();
        return smbc_getFunctionStatVFS(handle)(handle, url.data(), &figures) == 0 ? 0 : errno;
    });
    if (error != 0)
        return {refusal(error, folder, StationReturnCode::GetNasCapacityFailed)};
    return spaceOf(figures);
}

QString SmbClient::writeProbe(const SmbPath &folder)
{
    SMBCCTX *const handle = m_context->handle;
    struct stat facts = {};
    const int lookError = folder.share.isEmpty() ? ENOENT : attempt(folder, [&] {
        return smbc_getFunctionStat(handle)(handle, folder.url().constData(), &facts) == 0 ? 0 : errno;
    });
    if (lookError != 0)
        return refusal(lookError, folder, StationReturnCode::DirectoryNotFound);
    if (!S_ISDIR(facts.st_mode))
        return StationReturnCode::NotADirectory;

    const QByteArray url = folder.urlOf(QStringLiteral(".write-test-") + QUuid::createUuid().toString(QUuid::Id128));
    SMBCFILE *const file = smbc_getFunctionOpen(handle)(handle, url.constData(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (!file)
        return isSilence(errno) ? StationReturnCode::NasServerNotResponding : writeFailure(errno);
    constexpr char content[] = "test";
    int error = smbc_getFunctionWrite(handle)(handle, file, content, sizeof content) == sizeof content ? 0 : errno;
    if (smbc_getFunctionClose(handle)(handle, file) != 0 && error == 0)
        error = errno;
    if (smbc_getFunctionUnlink(handle)(handle, url.constData()) != 0 && error == 0)
        error = errno;
    if (error == 0)
        return StationReturnCode::Success;
    return isSilence(error) ? StationReturnCode::NasServerNotResponding : writeFailure(error);
}

SmbSpace spaceOf(const struct statvfs &figures)
{
    const bool isPosix = (figures.f_flag & SMBC_VFS_FEATURE_NO_UNIXCIFS) == 0;
    const auto first = static_cast<qint64>(figures.f_bsize);
    const auto second = static_cast<qint64>(figures.f_frsize);
    const qint64 block = second == 0 ? first : isPosix ? second : first * second;
    return {StationReturnCode::Success, static_cast<qint64>(figures.f_blocks) * block,
            static_cast<qint64>(figures.f_bavail) * block};
}
