#pragma once

#include "CommandTable.h"

class StationData;

/// The station's own commands about its cameras: station.listCameras, station.addCamera, station.removeCamera.
class CameraCommands
{
public:
    /// @param data must outlive this object
    explicit CameraCommands(StationData &data);

    /// The entries refer to this object.
    void enterInto(CommandTable &table);

private:
    void listCameras(const QVariant &data, const Answer &answer);
    void addCamera(Edit &edit);
    void removeCamera(Edit &edit);

    StationData &m_data;
};
