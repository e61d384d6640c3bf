#pragma once

#include "SamplePlan.h"

class PrivateFolder;

/// The recordings of a sample site while they are made: taken away again unless they are kept. For the station's user
/// alone; links that lie in the way are not followed.
class SampleFiles
{
public:
    /// @param folder where they shall lie; nothing may be there
    explicit SampleFiles(QString folder);
    ~SampleFiles();
    SampleFiles(const SampleFiles &) = delete;
    SampleFiles &operator=(const SampleFiles &) = delete;

    /// The path that the groups record onto, in @p folder.
    static QString pathIn(const QString &folder);

    /// Writes the files of @p groups into a fresh folder beside their place, and removes what attempts left there that
    /// were cut off. Empty, or a word of StationReturnCode for what went wrong.
    QString write(const QList<SampleGroup> &groups, const QDateTime &now);
    /// False where something lies there.
    bool moveToPlace();
    void keep();

private:
    static void removeLeftOvers(const QString &place);
    static QString writeDay(const PrivateFolder &folder, const QList<SampleFile> &files);

    QString m_folder;
    QString m_written; // where the files are now; empty: they are not to be taken away
};
