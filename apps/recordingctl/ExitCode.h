#pragma once

/// What recordingctl tells the shell.
enum class ExitCode {
    Done = 0,
    Refused = 1, ///< the station, or the plug-in before it, said no
    WrongUse = 2, ///< the command line is wrong, or the plug-in could not be loaded
    NoAnswer = 3, ///< the station did not answer in time
};
