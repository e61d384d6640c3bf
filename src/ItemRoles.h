#pragma once

#include "interface/Roles.h"

#include <QByteArray>
#include <QHash>

namespace VolumeRole = Recording::VolumeRole;
namespace RecordingGroupRole = Recording::RecordingGroupRole;
namespace NasServerRole = Recording::NasServerRole;
namespace DirectoryRole = Recording::DirectoryRole;
namespace TreeRole = Recording::TreeRole;

/// The names under which QML delegates read the roles.
const QHash<int, QByteArray> &volumeRoleNames(); ///< of VolumeRole
const QHash<int, QByteArray> &recordingGroupRoleNames(); ///< of RecordingGroupRole
const QHash<int, QByteArray> &nasServerRoleNames(); ///< of NasServerRole
const QHash<int, QByteArray> &directoryRoleNames(); ///< of DirectoryRole
const QHash<int, QByteArray> &treeRoleNames(); ///< of TreeRole
