#pragma once

#include "SmbPath.h"

#include <chrono>
#include <functional>
#include <memory>

struct statvfs;

/// Who logs on to an SMB server.
struct SmbLogon
{
    /// Of the user; "Host", or empty, means the server's own accounts.
    QString domain;
    /// "Guest" without a password, or empty, means a log-on without a name.
    QString userName;
    QString password;
};

/// The folders in a place.
struct SmbFolders
{
    QString returnCode; ///< a word of StationReturnCode, "0" for success
    QStringList names; ///< empty unless it succeeded
};

/// Something in a folder of a share.
struct SmbEntry
{
    enum class Kind {
        File,
        Folder,
        Other, ///< a link that the server does not follow itself, or a device
    };

    QString name;
    Kind kind = Kind::Other;
    qint64 bytes = 0; ///< of a file
};

/// What is in a folder.
struct SmbListing
{
    QString returnCode; ///< a word of StationReturnCode, "0" for success
    QList<SmbEntry> entries; ///< in no order, without "." and ".."; empty unless it succeeded
};

/// How much a share holds.
struct SmbSpace
{
    QString returnCode; ///< a word of StationReturnCode, "0" for success
    qint64 bytesTotal = 0;
    qint64 bytesAvailable = 0; ///< what the user who logged on may still write
};

/// A connection to SMB servers under one log-on, through libsmbclient. Every call blocks, and is used on one thread.
///
/// Refusals: "NasServerNotResponding" when the host is unknown or silent, or ends the connection, or does not speak
/// SMB; "LogonNASServerFaled" when it refuses the log-on, and otherwise the code that the call names.
///
/// A user's log-on that is refused is tried once in a call, since servers lock accounts after a few. (A refusal that
/// the library has no number for, of a locked account for instance, is made sure of by a second one.)
class SmbClient
{
public:
    /// @param timeout how long one answer of a server may take; a call needs several
    SmbClient(const SmbLogon &logon, std::chrono::milliseconds timeout);
    ~SmbClient();
    SmbClient(const SmbClient &) = delete;
    SmbClient &operator=(const SmbClient &) = delete;

    /// Logs on to the server of @p place and lists its shares.
    QString logOn(const SmbPath &place);

    /// The folders in @p place; the shares when it is a server, without those whose names end in "$". "." and ".." come
    /// first where the server sends them, the others sorted by nameLess(). "GetNasDirFailed".
    SmbFolders folders(const SmbPath &place);

    /// Everything in the folder @p folder of a share, names, kinds and sizes in one go. A list that was cut is none.
    /// "DirectoryNotFound" where there is nothing, or no folder; "DirectoryNotReadable" where this user may not list
    /// it.
    SmbListing list(const SmbPath &folder);

    /// The size of the share, or quota, that @p folder lies in; it must exist. "GetNasCapacityFailed".
    SmbSpace space(const SmbPath &folder);

    /// Writes a small file into @p folder and removes it. "DirectoryNotFound", "NotADirectory", "PermissionDenied",
    /// "VolumeReadOnly", "VolumeFull", "CannotCreate".
    QString writeProbe(const SmbPath &folder);

private:
    struct Context;
    using Call = std::function<int(Context &context)>; ///< gives a system's error number, 0 for success
    using Entry = std::function<void(unsigned int type, const QString &name)>; ///< the type is one of libsmbclient's

    void disconnect();
    bool hasName() const;
    int call(const SmbPath &place, const Call &function);
    QString attempt(const SmbPath &place, const QString &code, const Call &function);
    static Call lister(const SmbPath &place, const Entry &entry);
    bool isSpeaking(const SmbPath &server);

    SmbLogon m_logon;
    std::chrono::milliseconds m_timeout;
    std::unique_ptr<Context> m_context; // made by the first call
    QString m_loggedOnTo; // SmbPath::hostKey()
};

/// The bytes behind the block figures of an SMB server. Servers that speak the POSIX extensions give them as statvfs()
/// does; for the others libsmbclient puts the sector size and the number of sectors in a block into two fields, which
/// are multiplied. @p figures is what libsmbclient gave.
SmbSpace spaceOf(const struct statvfs &figures);
