#pragma once

/// The plug-in's enumerations for clients in C++, which know its class as a file alone. QML has them as
/// PluginRecordingManagement.Local and the like.
///
/// An argument of such a type is passed under the name that the plug-in has for it, which a using-declaration gives it:
///
///     using Recording::RecPathType;
///     QMetaObject::invokeMethod(plugin, "addRecordingGroup", Q_ARG(QString, "North"), Q_ARG(QString, "/mnt/video"),
///                               Q_ARG(RecPathType, RecPathType::Local));
///
/// Neither an int nor a qualified name is taken for it.
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
