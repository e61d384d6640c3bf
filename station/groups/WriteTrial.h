#pragma once

#include <filesystem>

/// Whether a folder takes recordings is tried with a small file: written, brought to the disk and gone again.
///
/// Both return 0, or the number of the error that stopped them: EPERM also where a file could be made and never be
/// removed. They may be called from any thread.
namespace WriteTrial {

/// The file has no name wherever the file system can do without one, so nothing is left in @p folder even by a process
/// that is killed meanwhile, and nobody who watches the folder hears of it. Elsewhere as tryNamed().
int tryFolder(const std::filesystem::path &folder);

/// The file's name begins with ".recording-station-" and is taken away before the file is written. Only a process that
/// is killed between these two leaves it, empty.
int tryNamed(const std::filesystem::path &folder);

} // namespace WriteTrial
