#include "SmbClient.h"

#include "NameOrder.h"
#include "ServerVocabulary.h"
#include "SmbFunctions.h"
#include "SmbKnock.h"
#include "SmbLibrary.h"
#include "StationVocabulary.h"

#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
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
    const auto *words = static_cast<const Words *>(smbFunctions().getOptionUserData(context));
    qstrncpy(domain, words->domain.constData(), static_cast<size_t>(domainSize));
    qstrncpy(user, words->userName.constData(), static_cast<size_t>(userSize));
    qstrncpy(password, words->password.constData(), static_cast<size_t>(passwordSize));
}

/// Whether only a server that lives gives this: there is no such thing.
bool isMissing(int error)
{
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG;
}

bool isRefusal(int error)
{
    return error == EACCES || error == EPERM;
}

/// What the library reports where it has no number for the server's own error and where it could not read an answer.
bool isStumble(int error)
{
    return error == EINVAL || error == ENOMEM;
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

SmbEntry entryOf(const libsmb_file_info &found)
{
    constexpr unsigned int folder = 0x10; // FILE_ATTRIBUTE_DIRECTORY, _DEVICE and _REPARSE_POINT of the protocol
    constexpr unsigned int device = 0x40;
    constexpr unsigned int link = 0x400;
    SmbEntry entry{QString::fromUtf8(found.name, -1)};
    if (found.attrs & (device | link))
        return entry;
    entry.kind = found.attrs & folder ? SmbEntry::Kind::Folder : SmbEntry::Kind::File;
    constexpr quint64 most = std::numeric_limits<qint64>::max();
    if (entry.kind == SmbEntry::Kind::File)
        entry.bytes = static_cast<qint64>(std::min<quint64>(found.size, most));
    return entry;
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
    case EIO:
    case EBUSY:
    case EEXIST:
    case EISDIR:
    case EFBIG:
    case ENOENT:
        return StationReturnCode::CannotCreate;
    default:
        return StationReturnCode::NasServerNotResponding;
    }
}
} // namespace

struct SmbClient::Context
{
    Words words;
    SmbLibrary::Turn turn;
    SMBCCTX *handle = nullptr;

    Context(const SmbLogon &logon, std::chrono::milliseconds timeout);
    ~Context() { smbFunctions().freeContext(handle, 1); }
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;
};

SmbClient::Context::Context(const SmbLogon &logon, std::chrono::milliseconds timeout)
    : words(wordsOf(logon))
{
    const std::lock_guard lock(SmbLibrary::creation());
    handle = smbFunctions().newContext();
    if (!handle)
        throw std::bad_alloc();
    smbFunctions().setTimeout(handle, static_cast<int>(timeout.count()));
    smbFunctions().setOptionUserData(handle, &words);
    smbFunctions().setFunctionAuthDataWithContext(handle, giveWords);
    smbFunctions().setOptionUseKerberos(handle, 0);
    smbFunctions().setOptionUseCCache(handle, 0);
    smbFunctions().setOptionNoAutoAnonymousLogin(handle, words.userName.isEmpty() ? 0 : 1);
    if (!smbFunctions().initContext(handle)) {
        smbFunctions().freeContext(handle, 1);
        throw std::bad_alloc();
    }
}

SmbClient::SmbClient(const SmbLogon &logon, std::chrono::milliseconds timeout)
    : m_logon(logon)
    , m_timeout(timeout)
{
}

SmbClient::~SmbClient() = default;

/// The next call has a connection of its own.
void SmbClient::disconnect()
{
    m_context.reset();
    m_loggedOnTo.clear();
}

bool SmbClient::hasName() const
{
    return !wordsOf(m_logon).userName.isEmpty();
}

int SmbClient::call(const SmbPath &place, const Call &function)
{
    const Words words = wordsOf(m_logon);
    if (std::max({words.domain.size(), words.userName.size(), words.password.size()}) > longestWord)
        return EACCES;
    if (const int error = findHost(place.host))
        return error;
    if (!m_context) {
        SmbLibrary::prepare();
        // A silent server shall not take its turn before one that lives.
        const int error = SmbLibrary::wasUsed() ? 0 : knockAt(place, m_timeout);
        if (error != 0)
            return isMissing(error) || isRefusal(error) || isStumble(error) ? EHOSTUNREACH : error;
        m_context = std::make_unique<Context>(m_logon, m_timeout);
    }
    const int error = function(*m_context);
    if (error == 0 || isRefusal(error) || isMissing(error))
        m_context->turn.serverAnswered();
    return error;
}

QString SmbClient::attempt(const SmbPath &place, const QString &code, const Call &function)
{
    int error = 0;
    for (int again = 0; again <= mostRepeats; ++again) {
        if (again > 0)
            disconnect();
        // A refused log-on has the same number as a folder that this user may not read. To find out afterwards would
        // be a second refused log-on, and some of those lock an account.
        if (hasName() && m_loggedOnTo != place.hostKey()) {
            const QString logOnCode = logOn(place);
            if (logOnCode != ReturnCode::Success)
                return logOnCode;
        }
        error = call(place, function);
        if (!isStumble(error))
            break;
    }
    if (error == 0)
        return ReturnCode::Success;
    if (isMissing(error) || (isRefusal(error) && hasName()))
        return code;
    m_loggedOnTo.clear();
    if (!isRefusal(error))
        return StationReturnCode::NasServerNotResponding;
    const QString logOnCode = logOn(place);
    return logOnCode == ReturnCode::Success ? code : logOnCode;
}

SmbClient::Call SmbClient::lister(const SmbPath &place, const Entry &entry)
{
    return [url = place.url(), entry](Context &context) {
        SMBCCTX *const handle = context.handle;
        SMBCFILE *const folder = smbFunctions().getFunctionOpendir(handle)(handle, url.constData());
        if (!folder)
            return errno;
        errno = 0; // stays so at the end of the list
        while (const smbc_dirent *found = smbFunctions().getFunctionReaddir(handle)(handle, folder)) {
            entry(found->smbc_type, QString::fromUtf8(static_cast<const char *>(found->name), -1));
            errno = 0;
        }
        const int error = errno;
        smbFunctions().getFunctionClosedir(handle)(handle, folder);
        return error;
    };
}

QString SmbClient::logOn(const SmbPath &place)
{
    const SmbPath server = place.server();
    const Call listShares = lister(server, [](unsigned int, const QString &) {});
    int error = call(server, listShares);
    if (isStumble(error)) {
        // The library has no number for some refusals, of a locked account for instance. Whoever says anything to
        // somebody without a name speaks the protocol.
        disconnect(); // before another client waits for its turn
        const bool isSpeaking = !m_logon.userName.isEmpty() && SmbClient({}, m_timeout).isSpeaking(server);
        error = call(server, listShares);
        if (isStumble(error) && isSpeaking)
            error = EACCES;
    }
    m_loggedOnTo = error == 0 ? server.hostKey() : QString();
    if (error == 0)
        return ReturnCode::Success;
    return isRefusal(error) ? NasReturnCode::LogonNASServerFaled : StationReturnCode::NasServerNotResponding;
}

bool SmbClient::isSpeaking(const SmbPath &server)
{
    const int error = call(server, lister(server, [](unsigned int, const QString &) {}));
    return error == 0 || isRefusal(error);
}

SmbFolders SmbClient::folders(const SmbPath &place)
{
    QStringList dots;
    QStringList names;
    const Call list = lister(place, [&](unsigned int type, const QString &name) {
        if (type == SMBC_DIR && (name == QStringLiteral(".") || name == QStringLiteral("..")))
            dots.append(name);
        else if (type == SMBC_DIR || (type == SMBC_FILE_SHARE && !name.endsWith(u'$')))
            names.append(name);
    });
    const QString code = attempt(place, NasReturnCode::GetNasDirFailed, [&](Context &context) {
        dots.clear();
        names.clear();
        return list(context);
    });
    if (code != ReturnCode::Success)
        return {code, {}};
    std::sort(names.begin(), names.end(), nameLess);
    return {code, dots + names};
}

SmbListing SmbClient::list(const SmbPath &folder)
{
    if (folder.share.isEmpty())
        return {StationReturnCode::DirectoryNotFound, {}};
    QList<SmbEntry> entries;
    int error = 0;
    const QString code = attempt(folder, StationReturnCode::DirectoryNotFound, [&](Context &context) {
        entries.clear();
        SMBCCTX *const handle = context.handle;
        SMBCFILE *const opened = smbFunctions().getFunctionOpendir(handle)(handle, folder.url().constData());
        if (!opened)
            return error = errno;
        errno = 0; // stays so at the end of the list
        while (const libsmb_file_info *found = smbFunctions().getFunctionReaddirPlus(handle)(handle, opened)) {
            if (qstrcmp(found->name, ".") != 0 && qstrcmp(found->name, "..") != 0)
                entries.append(entryOf(*found));
            errno = 0;
        }
        error = errno;
        smbFunctions().getFunctionClosedir(handle)(handle, opened);
        return error;
    });
    if (code == StationReturnCode::DirectoryNotFound && !isMissing(error))
        return {StationReturnCode::DirectoryNotReadable, {}};
    return {code, code == ReturnCode::Success ? entries : QList<SmbEntry>()};
}

SmbSpace SmbClient::space(const SmbPath &folder)
{
    if (folder.share.isEmpty())
        return {NasReturnCode::GetNasCapacityFailed};
    struct statvfs figures = {};
    const QString code = attempt(folder, NasReturnCode::GetNasCapacityFailed, [&](Context &context) {
        SMBCCTX *const handle = context.handle;
        QByteArray url = folder.url();
        figures = {};
        if (smbFunctions().getFunctionStatVFS(handle)(handle, url.data(), &figures) != 0)
            return errno;
        // Where the connection ends before the figures come, the library reports success all the same.
        return figures.f_blocks == 0 || figures.f_bsize == 0 ? EINVAL : 0;
    });
    return code == ReturnCode::Success ? spaceOf(figures) : SmbSpace{code};
}

QString SmbClient::writeProbe(const SmbPath &folder)
{
    if (folder.share.isEmpty())
        return StationReturnCode::DirectoryNotFound;
    struct stat facts = {};
    const QString code = attempt(folder, StationReturnCode::DirectoryNotFound, [&](Context &context) {
        SMBCCTX *const handle = context.handle;
        return smbFunctions().getFunctionStat(handle)(handle, folder.url().constData(), &facts) == 0 ? 0 : errno;
    });
    if (code != ReturnCode::Success)
        return code;
    if (!S_ISDIR(facts.st_mode))
        return StationReturnCode::NotADirectory;

    SMBCCTX *const handle = m_context->handle;
    const QByteArray url = folder.urlOf(QStringLiteral(".write-test-") + QUuid::createUuid().toString(QUuid::Id128));
    SMBCFILE *const file =
        smbFunctions().getFunctionOpen(handle)(handle, url.constData(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (!file)
        return writeFailure(errno);
    constexpr char content[] = "test";
    int error =
        smbFunctions().getFunctionWrite(handle)(handle, file, content, sizeof content) == sizeof content ? 0 : errno;
    if (smbFunctions().getFunctionClose(handle)(handle, file) != 0 && error == 0)
        error = errno;
    if (smbFunctions().getFunctionUnlink(handle)(handle, url.constData()) != 0 && error == 0)
        error = errno;
    return error == 0 ? ReturnCode::Success : writeFailure(error);
}

SmbSpace spaceOf(const struct statvfs &figures)
{
    const bool isPosix = (figures.f_flag & SMBC_VFS_FEATURE_NO_UNIXCIFS) == 0;
    const auto first = static_cast<qint64>(figures.f_bsize);
    const auto second = static_cast<qint64>(figures.f_frsize);
    const qint64 block = second == 0 ? first : isPosix ? second : first * second;
    return {ReturnCode::Success, static_cast<qint64>(figures.f_blocks) * block,
            static_cast<qint64>(figures.f_bavail) * block};
}
