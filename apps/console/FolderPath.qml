pragma Singleton

import QtQuick

/// Paths of a station's folders. The empty path is the list of the volumes.
QtObject {
    /// The path of @p entry as it is listed under @p folder; the list of the volumes holds whole paths.
    function child(folder: string, entry: string): string {
        if (folder === "")
            return entry;
        return folder.endsWith("/") ? folder + entry : folder + "/" + entry;
    }

    /// The folder above; above "/" is the list of the volumes.
    function above(folder: string): string {
        const path = trimmed(folder);
        const slash = path.lastIndexOf("/");
        if (path === "/" || slash < 0)
            return "";
        return slash === 0 ? "/" : path.substring(0, slash);
    }

    /// The steps from the list of the volumes down to @p folder, each a name and a path.
    function steps(folder: string): var {
        let result = [];
        let path = trimmed(folder);
        while (path !== "") {
            const up = above(path);
            result.unshift({ name: path === "/" ? "/" : path.substring(path.lastIndexOf("/") + 1), path: path });
            path = up;
        }
        result.unshift({ name: qsTr("Volumes"), path: "" });
        return result;
    }

    /// Without slashes at the end.
    function trimmed(folder: string): string {
        return folder.length > 1 ? folder.replace(/(.)\/+$/, "$1") : folder;
    }
}
