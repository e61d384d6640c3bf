import RecordingConsole

/// The volumes of the plug-in's model.
ModelReader {
    /// Maps with "path", "name", "size" and "available" (KB), and "isNas".
    function list(): var {
        return read({ path: "rootPathRole", name: "nameRole", size: "sizeRole", available: "availableSizeRole",
                      isNas: "isNASRole" });
    }
}
