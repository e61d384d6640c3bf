#include "Station.h"
#include "Tool.h"
#include "VolumeSource.h"
#include "embedded/EmbeddedLink.h"

#include <QSemaphore>

namespace {

/// Volumes of a disk that hangs: who asks for them never comes back.
class HangingVolumes : public VolumeSource
{
public:
    QList<Volume> volumes() const override
    {
        m_never.acquire();
        return {};
    }

    std::optional<Volume> volumeHolding(const QString &) const override
    {
        m_never.acquire();
        return {};
    }

private:
    mutable QSemaphore m_never;
};

/// A station whose disk hangs, and which once tells that its volumes changed: one is gone.
std::unique_ptr<Station> makeStation()
{
    auto station = std::make_unique<Station>(StationSettings{{}, {}, std::make_unique<HangingVolumes>()});
    const auto tell = [station = station.get()] {
        const QVariantMap volume{{QStringLiteral("recordingGroupID"), QStringLiteral("1")},
                                 {QStringLiteral("recordingGroupName"), QStringLiteral("Yard")},
                                 {QStringLiteral("recordingGroupReservedTime"), 4320},
                                 {QStringLiteral("recordingPath"), QStringLiteral("/srv")},
                                 {QStringLiteral("volumeSize"), 0},
                                 {QStringLiteral("volumeAvailableSize"), 0},
                                 {QStringLiteral("volumeOneDayUsage"), -1},
                                 {QStringLiteral("volumeRecordedDays"), 1}};
        emit station->eventRaised({QStringLiteral("VolumeChanged"), QVariantList{volume}});
    };
    QMetaObject::invokeMethod(station.get(), tell, Qt::QueuedConnection); // once somebody listens
    return station;
}

} // namespace

/// recordingctl, the whole of it, with that station.
int main(int argc, char **argv)
{
    ClientSession::Options options;
    options.pluginFolders = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    StationLink::Kind kind = EmbeddedLink::kind(makeStation);
    kind.scheme = QStringLiteral("local"); // whatever folder is asked for
    options.linkKinds = {kind};
    return runTool(argc, argv, options);
}
