#!/usr/bin/python3
"""The least that is a station: one volume, no recording groups, no edits. docs/own-station.md tells more."""

import argparse
import os
import shutil
import signal
import uuid
from datetime import datetime, timezone
from urllib.parse import quote

import cbor2
from paho.mqtt import client as mqtt
from paho.mqtt.packettypes import PacketTypes
from paho.mqtt.properties import Properties


def now():
    return datetime.now(timezone.utc).isoformat(timespec="seconds").replace("+00:00", "Z")


def volumes(folder):
    """Sizes in KB. No volume where the folder is gone."""
    try:
        space = shutil.disk_usage(folder)
    except OSError:
        return []
    return [{"volumePath": folder, "volumeName": os.path.basename(folder) or "System", "volumeIsSystem": folder == "/",
             "volumeSize": space.total // 1024, "volumeAvailableSize": space.free // 1024}]


def alarms(folder, gone_since):
    if volumes(folder):
        gone_since.clear()
        return {"alarms": [], "pending": []}
    gone_since.append(now())
    return {"alarms": [{"kind": "VolumeGone", "severity": "error", "subject": folder, "since": gone_since[0],
                        "text": f"The folder {folder} is gone.", "remedy": "Mount its disk."}], "pending": []}


def main():
    parser = argparse.ArgumentParser(description="The least that is a station, behind a broker of this machine.")
    parser.add_argument("folder", help="its volume")
    parser.add_argument("--id", required=True)
    parser.add_argument("--port", type=int, default=1883, help="of the broker")
    options = parser.parse_args()
    folder = os.path.realpath(options.folder)
    topic = f"recording/1/stations/{quote(options.id, safe='') or '%'}"
    identity = {"name": options.id, "instance": str(uuid.uuid4()), "startedAt": now()}
    gone_since = []
    answers = {
        "getVolume": lambda: volumes(folder),
        "getRecordingGroup": lambda: [],
        "retrieveRecordingGroupTreeModel": lambda: [],
        "GetNasServers": lambda: [],
        "reloadStorageUsageInfo": lambda: tell_figures(),  # clients wait for the event
        "station.listAlarms": lambda: alarms(folder, gone_since),
        "station.listCameras": lambda: [],
    }

    def status(state, **since):
        return cbor2.dumps({"state": state, **identity, **since})

    def tell_figures():  # of the paths of groups, that is none
        client.publish(f"{topic}/events/VolumeChanged", cbor2.dumps({"data": [], "at": now()}), qos=1, retain=True)

    def on_connect(client, *_):
        client.subscribe([(f"{topic}/commands", 1), (f"{topic}/commands/+", 1)])
        client.publish(f"{topic}/status", status("up", since=now()), qos=1, retain=True)
        tell_figures()

    def on_message(client, _, message):
        reply_topic = getattr(message.properties, "ResponseTopic", "")
        if not reply_topic.startswith("recording/1/clients/"):
            return  # elsewhere the station writes in its own name
        reply = {"part": 0, "returnCode": "0", "finish": True}
        try:
            command = cbor2.loads(message.payload)["name"]
            if command in answers:
                reply["data"] = answers[command]()
            else:
                reply["returnCode"] = "UnknownCommand"
        except Exception:  # deflated, JSON, or nonsense: this station reads plain CBOR alone
            reply["returnCode"] = "BadRequest"
        properties = Properties(PacketTypes.PUBLISH)  # no content type means CBOR
        properties.CorrelationData = getattr(message.properties, "CorrelationData", b"")
        client.publish(reply_topic, cbor2.dumps(reply), qos=1, properties=properties)

    form = [mqtt.CallbackAPIVersion.VERSION2] if hasattr(mqtt, "CallbackAPIVersion") else []  # paho 2
    client = mqtt.Client(*form, protocol=mqtt.MQTTv5)
    client.will_set(f"{topic}/status", status("lost"), qos=1, retain=True)
    client.on_connect, client.on_message = on_connect, on_message
    client.connect("127.0.0.1", options.port, keepalive=5)
    signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGTERM, signal.SIGINT})
    client.loop_start()
    signal.sigwait({signal.SIGTERM, signal.SIGINT})
    client.publish(f"{topic}/status", status("stopped", since=now()), qos=1, retain=True).wait_for_publish(5)
    client.disconnect()


if __name__ == "__main__":
    main()
