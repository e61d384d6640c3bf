#include "StationCheck.h"

#include "LocalEndpoint.h"
#include "PrintableText.h"
#include "files/OpenFile.h"
#include "nas/KeyFile.h"
#include "nas/NasStore.h"
#include "nas/PasswordVault.h"
#include "service/LocalSocket.h"
#include "store/DatabaseCheck.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
/// Looks at one data folder, from the outside in.
class StationCheck
{
public:
    StationCheck(QString dataFolder, QString keyFile)
        : m_folder(std::move(dataFolder))
        , m_keyFile(std::move(keyFile))
    {
    }

    QList<CheckResult> run()
    {
        if (!checkFolder())
            return m_results;
        checkWritable();
        checkLock();
        const std::optional<QList<NasServer>> servers = checkDatabase();
        checkKey(servers);
        return m_results;
    }

private:
    void ok(const QString &text) { m_results.append({true, text}); }
    void broken(const QString &text) { m_results.append({false, text}); }

    bool checkFolder();
    void checkWritable();
    void checkLock();
    std::optional<QList<NasServer>> checkDatabase();
    void checkKey(const std::optional<QList<NasServer>> &servers);

    QString m_folder;
    QString m_keyFile;
    OpenFile m_lock; // shared: no station starts meanwhile, and two checks may run
    bool m_isInUse = false;
    QList<CheckResult> m_results;
};

/// False where there is nothing more to look at.
bool StationCheck::checkFolder()
{
    struct stat facts = {};
    if (stat(QFile::encodeName(m_folder).constData(), &facts) != 0) {
        const int error = errno;
        broken(error == ENOENT
                   ? QStringLiteral(
                         "the data folder %1 is not there; mount its disk, or start the station, which makes it")
                         .arg(m_folder)
                   : QStringLiteral("the data folder %1 cannot be looked at: %2; run this as the station's user")
                         .arg(m_folder, qt_error_string(error)));
        return false;
    }
    if (!S_ISDIR(facts.st_mode)) {
        broken(QStringLiteral("the data folder %1 is no folder; name another one").arg(m_folder));
        return false;
    }
    constexpr int octal = 8;
    if (facts.st_uid != geteuid())
        broken(QStringLiteral(
                   "the data folder %1 belongs to %2, and this runs as %3; run it as %2, or give the folder and "
                   "its files to %3 with chown -R")
                   .arg(m_folder, userName(facts.st_uid), userName(geteuid())));
    else
        ok(QStringLiteral("the data folder %1 belongs to %2").arg(m_folder, userName(facts.st_uid)));
    const QString mode = QStringLiteral("%1").arg(facts.st_mode & 07777, 4, octal, QLatin1Char('0'));
    if ((facts.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        broken(QStringLiteral("the data folder is open to other users: its mode is %1, expected 0700; chmod 0700 %2")
                   .arg(mode, m_folder));
    else
        ok(QStringLiteral("the data folder's mode is %1").arg(mode));
    return true;
}

void StationCheck::checkWritable()
{
    const int mayWrite =
        faccessat(AT_FDCWD, QFile::encodeName(m_folder).constData(), R_OK | W_OK | X_OK, AT_EACCESS) == 0 ? 0 : errno;
    const std::optional<DatabaseError> disk = DatabaseFile(m_folder).whyDiskTakesNothing();
    if (disk) {
        const StationTrouble trouble = troubleOf(*disk, Database::pathIn(m_folder));
        broken(trouble.text + u' ' + trouble.remedy);
    } else if (mayWrite != 0) {
        broken(QStringLiteral("the data folder cannot be written by %1: %2; chmod 0700 %3")
                   .arg(userName(geteuid()), qt_error_string(mayWrite), m_folder));
    } else {
        ok(QStringLiteral("the data folder can be written, and its disk has space"));
    }
}

void StationCheck::checkLock()
{
    m_lock = OpenFile(open(QFile::encodeName(m_folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!m_lock.isOpen()) {
        broken(QStringLiteral("the data folder cannot be opened: %1").arg(qt_error_string(errno)));
        return;
    }
    if (flock(m_lock.get(), LOCK_SH | LOCK_NB) == 0) {
        ok(QStringLiteral("no station runs on the data folder"));
        return;
    }
    const int error = errno;
    if (error != EWOULDBLOCK) {
        broken(QStringLiteral("the data folder cannot be locked: %1; keep it on a disk of this machine")
                   .arg(qt_error_string(error)));
        return;
    }
    m_isInUse = true;
    const QString holder = stationHolder(m_folder);
    if (isListening(m_folder))
        ok(QStringLiteral("the data folder is in use by %1, which takes clients; the rest is only read").arg(holder));
    else
        broken(
            QStringLiteral("the data folder is in use by %1, which takes no clients; wait while it starts, else end it")
                .arg(holder));
}

/// The NAS servers in it; none where nobody knows.
std::optional<QList<NasServer>> StationCheck::checkDatabase()
{
    const QString path = Database::pathIn(m_folder);
    try {
        const DatabaseFile file(m_folder);
        if (!file.isThere()) {
            ok(QStringLiteral("there is no database %1 yet; the station makes it").arg(path));
            return QList<NasServer>();
        }
        file.requireWritable();
        DatabaseCheck check(m_folder, m_isInUse);
        if (file.isOpenToOthers())
            broken(QStringLiteral("the database %1 is open to other users; chmod 0600 %1").arg(path));
        const int newest = DatabaseCheck::newestVersion();
        ok(check.version() == newest
               ? QStringLiteral("the database %1 has version %2 and no damage").arg(path).arg(newest)
               : QStringLiteral("the database %1 has no damage, and version %2, which the station brings to %3")
                     .arg(path)
                     .arg(check.version())
                     .arg(newest));
        constexpr int firstWithServers = 2;
        return check.version() < firstWithServers ? QList<NasServer>() : NasStore(check.database()).servers();
    } catch (const DatabaseError &error) {
        const StationTrouble trouble = troubleOf(error, path);
        broken(trouble.text + u' ' + trouble.remedy);
        return {};
    }
}

void StationCheck::checkKey(const std::optional<QList<NasServer>> &servers)
{
    const KeyFile key = KeyFile::of(m_keyFile, m_folder);
    const bool isKeyThere = QFileInfo::exists(key.path) || QFileInfo(key.path).isSymLink();
    if (!isKeyThere && servers && servers->isEmpty()) {
        ok(QStringLiteral("there is no key file %1 yet; the station makes it with the first NAS server").arg(key.path));
        return;
    }
    try {
        const PasswordVault vault(key, PasswordVault::WhenMissing::Fail);
        if (!servers) {
            broken(
                QStringLiteral("the key file %1 can be read; whether it is that of the passwords is not known without "
                               "the database")
                    .arg(key.path));
            return;
        }
        qsizetype readable = 0;
        for (const NasServer &server : *servers) {
            try {
                QString password = vault.decrypted(server.sealedPassword);
                std::fill(password.begin(), password.end(), QChar());
                ++readable;
            } catch (const VaultError &error) {
                broken(QStringLiteral("the password of %1 on the NAS server %2: %3; put the right key file %4 back, or "
                                      "enter the password again")
                           .arg(server.userName, server.host, QString::fromUtf8(error.what()), key.path));
            }
        }
        if (readable == servers->size())
            ok(QStringLiteral("the key file %1 opens the passwords of all %2 NAS servers").arg(key.path).arg(readable));
    } catch (const VaultError &error) {
        broken(QStringLiteral("%1; put the key file back from a backup, for the station's user alone (mode 0600)")
                   .arg(QString::fromUtf8(error.what())));
    }
}
} // namespace

QList<CheckResult> checkStation(const QString &dataFolder, const StationConfig &config)
{
    return StationCheck(dataFolder, config.keyFile).run();
}

int printChecks(const QList<CheckResult> &results)
{
    bool isAllSound = true;
    for (const CheckResult &result : results) {
        isAllSound = isAllSound && result.isSound;
        std::printf("%s: %s\n", result.isSound ? "ok" : "broken", qUtf8Printable(printable(result.text)));
    }
    return isAllSound ? EXIT_SUCCESS : EXIT_FAILURE;
}
