#include "Measuring.h"
#include "Program.h"
#include "TreeStation.h"

#include <QDirIterator>

#include <algorithm>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {
constexpr int changedFiles = 10;
constexpr qint64 growth = 1024 * 1024;

/// The bytes of all files below a folder: every folder listed and every file asked for its size, as the system's calls
/// do it, and nothing kept.
qint64 walk(int parent, const char *name)
{
    const int descriptor = openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(fdopendir(descriptor), closedir);
    require(folder != nullptr, std::string(name) + " cannot be read");
    qint64 bytes = 0;
    while (const dirent *entry = readdir(folder.get())) {
        struct stat status = {};
        if (entry->d_name[0] == '.')
            continue;
        if (entry->d_type == DT_DIR)
            bytes += walk(descriptor, entry->d_name);
        else if (fstatat(descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
            bytes += status.st_size;
    }
    return bytes;
}

/// Days with their files and bytes, by the group's folder: Qt's iterator over everything below @p path.
QMap<QString, DaySums> readPlainly(const QString &path)
{
    QMap<QString, DaySums> groups;
    QDirIterator files(path, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        const QFileInfo file = files.fileInfo();
        const QStringList names = file.filePath().mid(path.size()).split(u'/', Qt::SkipEmptyParts);
        DaySum &sum = groups[names.at(0)][QDate::fromString(names.at(2), Qt::ISODate)];
        ++sum.files;
        sum.bytes += file.size();
    }
    return groups;
}

/// Of days that no folder watch hears of and no figure of an event is made of: only a reading finds them.
void growSome(RecordedTree &files)
{
    const Layout &layout = files.layout();
    for (int i = 0; i < changedFiles; ++i)
        files.grow({i % layout.groups, i % layout.cameras, layout.days / 2, i % layout.files}, growth);
}

/// One way in which a station comes to read all folders.
struct Reading
{
    std::string name;
    void (*run)(TreeStation &tree);
    void (*prepare)(TreeStation &tree); ///< before every run
};

void readAll(benchmark::State &state, TreeStation &tree, const Reading &reading)
{
    const RecordedTree &files = tree.files();
    const auto walkAll = [&] {
        require(walk(AT_FDCWD, QFile::encodeName(files.path())) == files.bytes(), "the walk's bytes are wrong");
    };
    const auto readToMaps = [&] {
        require(readPlainly(files.path()).values() == files.sums(), "the plain reading's sums are wrong");
    };
    const int size = tree.size();
    measure(state,
            {
                {"ours", [&] { reading.run(tree); }, [&] { reading.prepare(tree); }},
                {"floor", walkAll},
                {"plain", readToMaps},
            },
            {.rounds = std::clamp(300'000 / size, 1, 7), .cpuSeconds = processSeconds, .isMemoryMeasured = true});
    tree.checkIndex();
    state.counters["us a file"] = state.counters["ours"] / size;
    state.counters["files a second"] = size / state.counters["ours wall"] * 1e6;
}

const Reading readings[] = {
    {"first reading", [](TreeStation &tree) { tree.waitForFigures(); }, [](TreeStation &tree) { tree.forgetIndex(); }},
    {"reading again", [](TreeStation &tree) { tree.readAll(); }, [](TreeStation &tree) { tree.settle(); }},
    {"reading ten changes", [](TreeStation &tree) { tree.readAll(); },
     [](TreeStation &tree) {
         tree.settle();
         growSome(tree.files());
     }},
};
} // namespace

void addReading(const TreeStations &trees)
{
    for (const auto &tree : trees) {
        for (const Reading &reading : readings) {
            add(reading.name, {tree->size()}, [&tree, &reading](auto &state, int) {
                readAll(state, *tree, reading);
                if (reading.name == "reading again")
                    tree->readingAgain = state.counters["ours"];
            });
        }
    }
}
