#include "Program.h"
#include "TreeStation.h"

#include <QCoreApplication>
#include <QDir>

#include <cstdio>
#include <cstdlib>

#include <sys/statvfs.h>
#include <unistd.h>

namespace {
const std::vector<Layout> allLayouts{{10, 1, 20, 50}, {10, 5, 20, 100}, {10, 50, 20, 100}};
const std::vector<Layout> smokeLayouts{{2, 2, 20, 3}};

/// A file system in memory with room for all files of @p layouts twice over, else @p otherwise.
std::string quickFolder(const std::vector<Layout> &layouts, const std::string &otherwise)
{
    constexpr fsblkcnt_t bytesOfAFile = 1000; // with its share of a folder
    const std::string folder = "/dev/shm";
    fsfilcnt_t files = 0;
    for (const Layout &layout : layouts)
        files += 2 * static_cast<fsfilcnt_t>(layout.all());
    struct statvfs space = {};
    const bool isRoomy = access(folder.c_str(), W_OK) == 0 && statvfs(folder.c_str(), &space) == 0
        && (space.f_files == 0 || space.f_favail >= files) // some file systems have no limit and tell 0
        && space.f_bavail * space.f_frsize >= files * bytesOfAFile;
    return isRoomy ? folder : otherwise;
}

/// Makes a new folder in @p parent, which @p remover removes with all that is in it.
QString newFolder(const std::string &parent, FILE *remover)
{
    std::string folder = parent + "/station-benchmark-XXXXXX";
    require(remover && mkdtemp(folder.data()), "no folder can be made in " + parent);
    std::fwrite(folder.c_str(), 1, folder.size() + 1, remover); // with the null
    std::fflush(remover);
    return QString::fromStdString(folder);
}

} // namespace

/// Google Benchmark with its own options, and one of ours: --smoke runs everything in a small size, to see that it
/// works. The files of the recordings take inodes, 1 GB of memory and next to no space.
int main(int argc, char **argv)
{
    const bool isSmoke = takeFlag("--smoke", argc, argv);
    const std::vector<Layout> &layouts = isSmoke ? smokeLayouts : allLayouts;
    const std::string temporary = QDir::tempPath().toStdString();
    // It goes on when the pipe to it is closed, which it is when this process ends, however it ends.
    const std::unique_ptr<FILE, int (*)(FILE *)> remover(
        popen("trap '' INT TERM HUP; exec xargs --null rm -rf --", "we"), pclose);
    const QString files = newFolder(quickFolder(layouts, temporary), remover.get());
    const QString data = newFolder(temporary, remover.get());
    const QCoreApplication application(argc, argv);

    TreeStations trees;
    for (const Layout &layout : layouts) {
        const QString name = QStringLiteral("/%1").arg(layout.all());
        trees.push_back(std::make_unique<TreeStation>(layout, files + name, data + name));
    }
    addReading(trees);
    addChanges(trees);
    addEvents(isSmoke ? std::vector{32} : std::vector{10, 100, 1000});
    addLink(data, isSmoke);
    addStarts(trees);
    return runBenchmarks(argc, argv);
}
