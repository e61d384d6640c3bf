#pragma once

/// The plug-in's enumerations for clients in C++, which know its class as a file alone. QML has them as
/// PluginRecordingManagement.Local and the like.
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
