#!/usr/bin/python3
"""A recording station behind an MQTT 5 broker, as docs/own-station.md tells how to write one.

This file has the broker's side: status, commands, replies and events. commands.py has what the station answers.
"""

import argparse
import json
import logging
import re
import signal
import socket
import uuid
import zlib
from urllib.parse import quote

import cbor2
from paho.mqtt import client as mqtt
from paho.mqtt.packettypes import PacketTypes
from paho.mqtt.properties import Properties

from commands import Commands, Volume, now

CBOR, DEFLATED_CBOR, JSON = "application/cbor", "application/cbor+deflate", "application/json"
LARGEST_BODY = 64 * 1024 * 1024
REPLY_TOPIC = re.compile("recording/1/clients/[^/+#]+/replies")
END_SIGNALS = {signal.SIGINT, signal.SIGTERM}


def decode(message):
    """The map in the body of a message; an exception where it is none."""
    body, content_type = message.payload, getattr(message.properties, "ContentType", "")
    if content_type == DEFLATED_CBOR:
        inflater = zlib.decompressobj()
        body = inflater.decompress(body, LARGEST_BODY)
        if not inflater.eof:
            raise ValueError("it is cut off, or too large")
    elif content_type not in ("", CBOR, JSON):
        raise ValueError(f"nothing here reads {content_type!r}")
    decoded = json.loads(body) if content_type == JSON else cbor2.loads(body)
    if not isinstance(decoded, dict):
        raise ValueError("it is no map")
    cbor2.dumps(decoded)  # JSON may hold text that is no Unicode, and could not be sent to anybody
    return decoded


def encode(body, content_type=CBOR):
    return json.dumps(body).encode() if content_type == JSON else cbor2.dumps(body)


class Station:
    """Takes commands from the broker, and tells it how the station is. All callbacks come from paho's one thread."""

    def __init__(self, station_id, name, commands):
        self.topic = f"recording/1/stations/{quote(station_id, safe='') or '%'}"
        self.commands = commands
        self.is_ending = False
        self.identity = {"name": name, "address": socket.gethostname(), "version": "1", "instance": str(uuid.uuid4()),
                         "startedAt": now()}
        # paho 2 wants to be told that callbacks have the form which both versions know.
        form = [mqtt.CallbackAPIVersion.VERSION2] if hasattr(mqtt, "CallbackAPIVersion") else []
        self.client = mqtt.Client(*form, client_id=f"station-{self.identity['instance']}", protocol=mqtt.MQTTv5)
        self.client.will_set(f"{self.topic}/status", self.status("lost"), qos=1, retain=True)
        self.client.on_connect = self.on_connect
        self.client.on_connect_fail = lambda *_: logging.error("The broker cannot be reached; trying again")
        self.client.on_message = self.on_message

    def run(self, host, port):
        """Serves until the process is told to end."""
        signal.pthread_sigmask(signal.SIG_BLOCK, END_SIGNALS)  # nothing is interrupted half done
        self.client.connect_async(host, port, keepalive=5)
        self.client.loop_start()
        signal.sigwait(END_SIGNALS)
        self.is_ending = True
        try:
            self.publish_status("stopped").wait_for_publish(5)
        except (RuntimeError, ValueError):
            logging.warning("The broker cannot be told that the station ends")
        self.client.disconnect()
        self.client.loop_stop()

    def status(self, state, **since):
        return encode({"state": state, **self.identity, **since})

    def publish_status(self, state):
        return self.client.publish(f"{self.topic}/status", self.status(state, since=now()), qos=1, retain=True)

    def publish_usage(self):
        body = encode({"data": self.commands.usage(), "at": now()})
        self.client.publish(f"{self.topic}/events/VolumeChanged", body, qos=1, retain=True)

    def on_connect(self, client, userdata, flags, reason, properties):
        if reason.value >= 128:
            logging.error("The broker refuses this station: %s", reason)
            return
        for topic in ("commands", "commands/+", "status"):  # before it is up: no command comes too early
            client.subscribe(f"{self.topic}/{topic}", qos=1)
        self.publish_status("up")
        self.publish_usage()
        logging.info("Clients are served over the broker")

    def on_message(self, client, userdata, message):
        try:
            if message.topic == f"{self.topic}/status":
                self.correct_status(message)
            else:
                self.take_command(message)
        except Exception:  # a mistake in here must not end the station
            logging.exception("A message under %s could not be dealt with", message.topic)

    def correct_status(self, message):
        """The last will of an earlier connection may come after this one's "up"."""
        is_up = message.payload and decode(message).get("state") == "up"
        if not is_up and not self.is_ending:
            self.publish_status("up")

    def take_command(self, message):
        reply_topic = getattr(message.properties, "ResponseTopic", "")
        if not REPLY_TOPIC.fullmatch(reply_topic):
            logging.warning("A command is left alone: it wants its reply under %r", reply_topic)
            return
        try:
            command = decode(message)
        except Exception as error:  # what strangers send fails in many ways
            logging.warning("What came under %s is no command: %s", message.topic, error)
            self.reply(message, [("BadRequest", None)])
            return
        groups = self.commands.groups
        self.reply(message, [("StationStopping", None)] if self.is_ending else self.commands.answer(command))
        if self.commands.groups != groups or command.get("name") == "reloadStorageUsageInfo":
            self.publish_usage()

    def reply(self, message, parts):
        properties = Properties(PacketTypes.PUBLISH)
        is_json = getattr(message.properties, "ContentType", "") == JSON
        properties.ContentType = JSON if is_json else CBOR
        if hasattr(message.properties, "CorrelationData"):
            properties.CorrelationData = message.properties.CorrelationData
        for number, (code, data) in enumerate(parts):
            part = {"part": number, "returnCode": code, "finish": number == len(parts) - 1}
            body = encode(part if data is None else {**part, "data": data}, properties.ContentType)
            self.client.publish(message.properties.ResponseTopic, body, qos=1, properties=properties)


def main():
    parser = argparse.ArgumentParser(description="A recording station behind an MQTT 5 broker of this machine.")
    parser.add_argument("volume", metavar="FOLDER", help="counts as the station's volume")
    parser.add_argument("--id", required=True, help="tells the station from all others at the broker")
    parser.add_argument("--name", default=socket.gethostname(), help="as people call it; default: %(default)s")
    parser.add_argument("--broker", default="localhost", metavar="HOST", help="default: %(default)s")
    parser.add_argument("--port", type=int, default=1883, help="default: %(default)s")
    options = parser.parse_args()
    logging.basicConfig(level=logging.INFO, format="%(levelname)s: %(message)s")
    try:
        commands = Commands(options.id, Volume(options.volume))
    except OSError as error:
        parser.error(f"{options.volume} cannot be a volume: {error.strerror}")
    Station(options.id, options.name, commands).run(options.broker, options.port)


if __name__ == "__main__":
    main()
