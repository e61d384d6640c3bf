#pragma once

#include "StationMessage.h"
#include "VolumeSource.h"

#include <QObject>

#include <functional>
#include <memory>

/// A recording server: does what commands ask for on the machine that it runs on. Lives on one thread of its own and
/// may block there.
class Station : public QObject
{
    Q_OBJECT
public:
    using Answer = std::function<void(const StationReply &)>;

    /// Serves the volumes that @p volumes names; without one, the storage volumes mounted on this machine.
    explicit Station(std::unique_ptr<VolumeSource> volumes = {}, QObject *parent = nullptr);
    ~Station() override;

    /// Carries @p command out and gives every part of the reply to @p answer, the last with StationReply::finish set.
    /// A command that the station does not know is answered with a failure.
    void handle(const StationCommand &command, const Answer &answer);

signals:
    void eventRaised(const StationEvent &event);

private:
    void carryOut(const StationCommand &command, const Answer &answer);
    void getVolume(const QVariant &data, const Answer &answer);
    void getServerDir(const QVariant &data, const Answer &answer);
    void createDirectory(const QVariant &data, const Answer &answer);

    std::unique_ptr<VolumeSource> m_volumes;
};
