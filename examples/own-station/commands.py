"""What the station answers: its volumes, and recording groups that last as long as the process does.

docs/own-station.md says which commands a client needs, docs/station-protocol.md what each of them means.
"""

import copy
import logging
import os
import shutil
import time
import uuid
from datetime import datetime, timezone

DAY = 24 * 60 * 60
SETTINGS = {"recordingGroupName": str, "recordingGroupReservedTimeEnabled": bool, "recordingGroupReservedTime": int}
NODE_IDS = "recordingGroupNodeIdList"
PATH = {"path": str, "pathType": int, "reserveSpace": int, "isRecoveryMode": bool}


def now():
    return datetime.now(timezone.utc).isoformat(timespec="milliseconds").replace("+00:00", "Z")


class Refusal(Exception):
    """A command is not carried out. A few commands tell in the data of the reply what was wrong with each element."""

    def __init__(self, code, data=None):
        super().__init__(code)
        self.code, self.data = code, data


def bad_request(key, expected):
    logging.warning('Bad request: "%s" has to be %s', key, expected)
    return Refusal("BadRequest")


def field(request, key, kind, default=None):
    """The value of a key; the command is refused where it is of another type, or missing without a default."""
    value = request.get(key, default) if isinstance(request, dict) else None
    if kind is int and isinstance(value, float) and value.is_integer():
        value = int(value)  # scripts often have no other numbers
    if type(value) is not kind:  # isinstance() would take True for a number
        raise bad_request(key, f"there, and of the type {kind.__name__}")
    return value


def texts(request, key, default=None):
    values = field(request, key, list, default)
    if not all(isinstance(value, str) for value in values):
        raise bad_request(key, "a list of texts")
    return values


def normalized(path):
    """Written in one way: with slashes, and none of them too many."""
    names = path.replace("\\", "/").split("/")
    return ("" if names[0] else "/") + "/".join(filter(None, names))


def refused(element, index, value, code):
    return {"element": element, "index": index, "value": value, "returnCode": code}


def refused_members(request, element, code):
    """This station has no cameras, so whatever names one is refused."""
    members = field(request, element, list, [])
    return [refused(element, index, field(member, "camName", str), code) for index, member in enumerate(members)]


class Volume:
    def __init__(self, folder):
        self.path = os.path.realpath(folder)
        self.device = os.stat(self.path).st_dev
        self.gone_since = ""

    def holds(self, path):
        return f"{path}/".startswith(f"{self.path.rstrip('/')}/")

    def figures(self):
        """As messages have them, sizes in KB. Size 0 tells clients that the volume is gone: the folder, or its disk."""
        try:
            space = shutil.disk_usage(self.path) if os.stat(self.path).st_dev == self.device else None
        except OSError:
            space = None
        self.gone_since = "" if space else self.gone_since or now()
        return {
            "volumeName": os.path.basename(self.path) or "System",
            "volumeSize": space.total // 1024 if space else 0,
            "volumeAvailableSize": space.free // 1024 if space else 0,
            "volumeIsSystem": self.device == os.stat("/").st_dev,
        }


class Commands:
    def __init__(self, station_id, volume):
        self.station_id = station_id
        self.volume = volume
        self.groups = {}  # by id
        self.outcomes = {}  # of edits, by their ids: when, command, and parts of the reply
        self.queries = {
            "getVolume": self.list_volumes,
            "getRecordingGroup": self.list_groups,
            "retrieveRecordingGroupTreeModel": self.list_groups,
            "GetNasServers": lambda data: [],
            "reloadStorageUsageInfo": lambda data: None,  # the event follows
            "station.listAlarms": self.list_alarms,
            "station.listCameras": lambda data: [],
        }
        self.edits = {
            "addRecordingGroupWithCompleteInfo": self.add_group,
            "updateRecordingGroup": self.update_group,
            "removeRecordingGroup": self.remove_groups,
        }

    def answer(self, command):
        """The parts of the reply: return code and data of each."""
        try:
            name, data = field(command, "name", str), command.get("data")
            if name in self.queries:
                return [("0", self.queries[name](data))]
            if name in self.edits:
                return self.edit_once(name, data, field(command, "id", str, ""))
            raise Refusal("UnknownCommand")
        except Refusal as refusal:
            return [(refusal.code, refusal.data)]
        except Exception:
            logging.exception("A command failed")
            return [("InternalError", None)]

    def edit_once(self, name, data, edit_id):
        """Carries an edit out; one that came before under its id is answered as it was then."""
        if len(edit_id.encode()) > 128:
            raise bad_request("id", "of 128 bytes at most")
        self.outcomes = {key: known for key, known in self.outcomes.items() if known[0] > time.monotonic() - DAY}
        _, command, parts = self.outcomes.get(edit_id, (0, (name, data), None))
        if command != (name, data):
            raise Refusal("RequestIdInUse")
        if parts is None:
            groups = copy.deepcopy(self.groups)  # an edit is done as a whole, or not at all
            try:
                parts = self.edits[name](groups, data)
                self.groups = groups
            except Refusal as refusal:
                parts = [(refusal.code, refusal.data)]
            if edit_id:
                self.outcomes[edit_id] = (time.monotonic(), command, parts)
        return parts

    def add_group(self, groups, request):
        group = {"paths": {}}
        errors = self.change_settings(groups, group, request)
        errors += self.put_paths(group, request, "pathInfoList")
        errors += refused_members(request, "deviceInfos", "CameraNotFound")
        if errors:
            raise Refusal(errors[0]["returnCode"], {"errorAction": errors})
        group_id = f"{{{uuid.uuid4()}}}"
        groups[group_id] = group
        return [("0", {"recordingGroupID": group_id})]

    def update_group(self, groups, request):
        group_id = field(request, "recordingGroupID", str)
        if group_id not in groups:
            code = "RecordingGroupNotFound"
            raise Refusal(code, [refused("recordingGroupID", -1, group_id, code)])
        group = groups[group_id]
        errors = refused_members(request, "updateRmCameraList", "CameraNotInGroup")
        errors += refused_members(request, "updateAddCameraList", "CameraNotFound")
        for index, path in enumerate(texts(request, "updateRmPathList", [])):
            if not group["paths"].pop(normalized(path), None):
                errors.append(refused("updateRmPathList", index, path, "PathNotInGroup"))
        errors += self.put_paths(group, request, "updateAddPathList")
        errors += self.put_paths(group, request, "updateSetPathList", is_new=False)
        errors += self.change_settings(groups, group, field(request, "updateSetRecordingGroup", dict, {}))
        if errors:
            raise Refusal(errors[0]["returnCode"], errors)
        return [("0", [])]

    def remove_groups(self, groups, request):
        """One part for each group: one that is not there does not keep the others from going."""
        group_ids = texts(request, "recordingGroupIDList")
        if not group_ids:
            raise bad_request("recordingGroupIDList", "of one group at least")
        return [("0" if groups.pop(group_id, None) else "RecordingGroupNotFound", {"recordingGroupID": group_id})
                for group_id in group_ids]

    def change_settings(self, groups, group, request):
        for key, kind in SETTINGS.items():
            group[key] = field(request, key, kind, group.get(key))
        group[NODE_IDS] = texts(request, NODE_IDS, group.get(NODE_IDS, []))
        name, minutes = group["recordingGroupName"], group["recordingGroupReservedTime"]
        errors = []
        if not name.strip():
            errors.append(refused("recordingGroupName", -1, name, "EmptyRecordingGroupName"))
        if any(other["recordingGroupName"] == name for other in groups.values() if other is not group):
            errors.append(refused("recordingGroupName", -1, name, "RecordingGroupNameInUse"))
        if not group["recordingGroupReservedTimeEnabled"] <= minutes < 2**31:
            errors.append(refused("recordingGroupReservedTime", -1, minutes, "ReservedTimeRefused"))
        return errors

    def put_paths(self, group, request, element, is_new=True):
        """Adds the paths of a request to the group, or changes them there."""
        errors = []
        for index, entry in enumerate(field(request, element, list, [])):
            written = field(entry, "path", str)
            path = normalized(written)
            before = group["paths"].get(path, {})
            if bool(before) == is_new:
                errors.append(refused(element, index, written, "PathInGroup" if before else "PathNotInGroup"))
                continue
            after = {key: field({"isRecoveryMode": False, **before, **entry}, key, kind) for key, kind in PATH.items()}
            if code := self.why_no_path(path, before, after):
                errors.append(refused(element, index, written, code))
            group["paths"][path] = after
        return errors

    def why_no_path(self, path, before, after):
        """The code of the first rule that a path breaks, or nothing. The disk of one that is changed may be away."""
        reserve = after["reserveSpace"]
        is_more = reserve > before.get("reserveSpace", 0)
        rules = [
            ("PathTypeRefused", after["pathType"] == 0),
            ("PathNotAbsolute", path.startswith("/")),
            ("NameRefused", not {".", ".."} & set(path.split("/"))),
            ("OutsideVolumes", self.volume.holds(path)),
            ("DirectoryNotFound", before or os.path.isdir(path)),
            ("ReservedSpaceRefused", reserve >= 0 and reserve % 1024 == 0),
            ("ReservedSpaceExceedsVolume", not is_more or reserve * 1024 <= self.volume.figures()["volumeSize"]),
        ]
        return next((code for code, is_kept in rules if not is_kept), "")

    def list_volumes(self, data):
        figures = self.volume.figures()
        return [{"volumePath": self.volume.path, **figures}] if figures["volumeSize"] else []

    def list_groups(self, request):
        """The maps of the tree; a client reads from them what it knows of the list, too."""
        if request is not None and field(request, "relayPath", str, "") not in ("", self.station_id):
            raise Refusal("UnknownStation")
        return [{
            "recordingGroupID": group_id,
            "recordingGroupName": group["recordingGroupName"],
            "relayPath": self.station_id,
            "recordingGroupPathList": list(group["paths"]),
            "reserveSpace": [path["reserveSpace"] for path in group["paths"].values()],
            "recordingGroupRecoveryPathList": [name for name, path in group["paths"].items() if path["isRecoveryMode"]],
            "recordingGroupNASPathList": [],
            "recordingGroupReservedTime": reserved_time(group),
            "recordingGroupMemberList": [],
            NODE_IDS: group[NODE_IDS],
        } for group_id, group in self.groups.items()]

    def list_alarms(self, data):
        if self.volume.figures()["volumeSize"]:
            return {"alarms": [], "pending": []}
        path = self.volume.path
        alarm = {"kind": "VolumeGone", "severity": "error", "subject": path, "since": self.volume.gone_since,
                 "text": f"The volume {path} is not there.", "remedy": "Mount it again, or repair its disk."}
        return {"alarms": [alarm], "pending": []}

    def usage(self):
        """The data of "VolumeChanged". The paths share what is free as they reserve it, or else equally."""
        figures = self.volume.figures()
        free = figures["volumeAvailableSize"]
        reserves = [path["reserveSpace"] for group in self.groups.values() for path in group["paths"].values()]
        total = sum(reserves)
        return [{
            **figures,
            "recordingGroupID": group_id,
            "recordingGroupName": group["recordingGroupName"],
            "recordingGroupReservedTime": reserved_time(group),
            "recordingPath": name,
            "volumeAvailableSize": free * path["reserveSpace"] // total if total else free // len(reserves),
            "volumeOneDayUsage": -1,  # not known: nothing records here
            "volumeRecordedDays": -1,
            "volumeIsNAS": False,
        } for group_id, group in self.groups.items() for name, path in group["paths"].items()]


def reserved_time(group):
    return group["recordingGroupReservedTime"] if group["recordingGroupReservedTimeEnabled"] else 0
