pragma Singleton

import QtQuick

/// Paths on NAS servers, as //host/share/folder. //host lists the server's shares.
QtObject {
    function root(host: string): string {
        return "//" + host;
    }

    function child(path: string, entry: string): string {
        return path + "/" + entry;
    }

    /// The folder above; above //host is nothing.
    function above(path: string): string {
        const slash = path.lastIndexOf("/");
        return slash < 2 ? "" : path.substring(0, slash);
    }

    function entry(path: string): string {
        return path.substring(path.lastIndexOf("/") + 1);
    }

    /// Whether @p path lies in a share, so that it has a capacity.
    function inShare(path: string): bool {
        return path.indexOf("/", 2) > 2;
    }

    /// //host/share of a path in a share.
    function share(path: string): string {
        return path.split("/").slice(0, 4).join("/");
    }

    /// The steps from the server down to @p path, each a name and a path.
    function steps(path: string): var {
        let result = [];
        for (let step = path; step !== ""; step = above(step))
            result.unshift({ name: entry(step), path: step });
        return result;
    }

    /// Equal for all spellings of one path: \\host\share, //host/share/ and smb://HOST/share.
    function key(path: string): string {
        const slashed = path.replace(/\\/g, "/").replace(/^smb:/i, "").replace(/(.)\/+$/, "$1");
        return slashed.replace(/^\/\/[^/]*/, host => host.toLowerCase());
    }
}
