#pragma once

/// The plug-in's enumerations for clients in C++, which know its class as a file alone. QML has them as
/// PluginRecordingManagement.Local and the like.
///
/// Q_ARG() cannot pass an argument of such a type, as the plug-in's own has another name for each Qt. What is passed
/// with the name that methods declare works with all:
///
///     const QString name = "North", path = "/mnt/video";
///     const auto type = Recording::RecPathType::Local;
///     bool isSent = false;
///     QMetaObject::invokeMethod(plugin, "addRecordingGroup", Qt::DirectConnection,
///                               QGenericReturnArgument("bool", &isSent), QGenericArgument("QString", &name),
///                               QGenericArgument("QString", &path), QGenericArgument("RecPathType", &type));
namespace Recording {

/// Kind of a recording path.
enum class RecPathType : int {
    Local = 0, ///< on a disk of the station
    NetHost = 1, ///< on a network host
    NetDomain = 2, ///< in a network domain
};

/// Outcome of a NAS command.
enum class NASServerErrorCode : int {
    NonError = 0,
    LogonFailed = 1,
    ServerExist = 2,
    GetDirFailed = 3,
    GetCapacityFailed = 4,
    Unknown = 5,
};

/// Which of the entries "." and ".." a NAS folder listing hides; a set of bits.
enum class NASDirFilter : int {
    NoDot = 1,
    NoDotDot = 2,
    NoDotAndDotDot = 3,
};

} // namespace Recording
