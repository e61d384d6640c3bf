#pragma once

#include <QHash>
#include <QList>
#include <QString>

/// How the reading of a folder ended.
enum class ReadResult {
    Done,
    Missing, ///< nothing is there, or something else than a folder
    Failed, ///< it is there and could not be read to the end; what was read says nothing
};

struct SubFolder
{
    QString name;
    quint64 inode = 0; ///< tells it from another folder that takes its name later
};

struct SubFolders
{
    ReadResult result = ReadResult::Missing;
    QList<SubFolder> folders; ///< in no order; symbolic links are none
};

struct RecordedFiles
{
    ReadResult result = ReadResult::Missing;
    QHash<QString, qint64> sizes; ///< bytes of each regular file, by its name
    QString newest; ///< the file written last; empty where there is none
};

/// The folders directly in @p path.
SubFolders readFolders(const QString &path);

/// The regular files directly in @p path. Failed soon after the thread was asked to end.
RecordedFiles readFiles(const QString &path);

/// Bytes of the regular file @p path; -1 where there is none.
qint64 fileSize(const QString &path);

/// Inode and device of the folder @p path; both 0 where there is none.
struct FolderIdentity
{
    quint64 inode = 0;
    quint64 device = 0;
};
FolderIdentity identify(const QString &path);
