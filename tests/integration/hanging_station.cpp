#include "Station.h"
#include "Tool.h"
#include "VolumeSource.h"

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

} // namespace

/// recordingctl, the whole of it, with a station whose disk hangs.
int main(int argc, char **argv)
{
    ClientSession::Options options;
    options.pluginFolders = QStringList{QStringLiteral(PLUGIN_FOLDER)};
    options.makeStation = [] { return std::make_unique<Station>(std::make_unique<HangingVolumes>()); };
    return runTool(argc, argv, options);
}
