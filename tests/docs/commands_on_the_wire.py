"""The records that the schema tells of a command are those that library and device exchange.

fleetctl reads and writes everything that it knows by name; the library's log shows the bodies, the
device's tells the commands.
"""

import os
import re
import subprocess
import sys

from harness import CODEGEN, ROOT, Device, PageCase, run

sys.path.insert(0, str(CODEGEN))

from check import check_schema
from schema import read_schema

# The keep-alive, which is due after a minute, and a command that no exported function sends.
ASIDE = {11007, 14006}
NETWORK = ["NetId=1", "WorkingType=0", "DHCP=false", "LocalIp=192.0.2.9",
           "LocalSubnetMask=255.255.255.0", "Gateway=192.0.2.1", "PrimaryDNSIp=192.0.2.1",
           "SpareDNSIp=192.0.2.2", "IPProtoVer=1"]
RUNS = [
    ("ipc", "get", "time", "timezone", "ntp", "ports", "protocol-security", "hardware", "software",
     "language", "network-ability", "timezone-ability", "summary", "disks", "uart", "video",
     "audio", "osd-ability", "ptz", "motion", "blind", "sensor", "streams", "osd"),
    ("nvr", "get", "channels"),
    ("ipc", "set", "time", "Minute=1"),
    ("ipc", "set", "timezone", "DSTOpenFlag=false"),
    ("ipc", "set", "ntp", "NTPPort=123"),
    ("ipc", "set", "ports", "HttpPort=8080"),
    ("ipc", "set", "protocol-security", "UserVerificationFlag=true"),
    ("ipc", "set", "network", *NETWORK),
    ("ipc", "set", "streams", "0.BitRate=2048"),
    ("ipc", "set", "osd-channel", "--channel", "1", "OSDGlobalParam.InverseFlag=true"),
    ("ipc", "do", "passwd", "--yes"),
    ("ipc", "do", "exec", "uptime"),
    ("ipc", "do", "reset", "--yes", "--hold", "1"),
    ("ipc", "do", "restart", "--yes"),
]


class Wire(PageCase):
    def setUp(self):
        self.schema = read_schema(ROOT / "schema")
        check_schema(self.schema)
        self.names = {domain.class_name: domain.name for domain in self.schema.domains}
        self.seen = {}

    def ask(self, kind, *arguments):
        """One run of fleetctl against a device of its own."""
        with Device(self.arguments.virtual_device, "--kind", kind, "--verbose") as device:
            done = subprocess.run(
                [self.arguments.fleetctl, "-d", f"127.0.0.1:{device.port}", "-u", "admin",
                 "-o", "json", "-vv", *arguments],
                env=dict(os.environ, FLEETCTL_PASSWORD="secret", FLEETCTL_NEW_PASSWORD="new"),
                capture_output=True, text=True, stdin=subprocess.DEVNULL, timeout=60, check=False)
        self.assertEqual(done.returncode, 0, msg=f"{arguments}: {done.stdout}")
        self.take(device.told, done.stderr)

    def take(self, told, log):
        """Pairs the commands that the device tells of with the bodies in the library's log."""
        commands = [int(number) for number in re.findall(r"^\S+ \S+ (\d+) .*->", told, re.M)]
        # Long bodies are cut in the log, so their ends are not looked for.
        bodies = [re.findall(r"^\t<(\w+)", body, re.M)
                  for body in log.split('<Parameters Version="1"')[1:]]
        # A device that restarts leaves the logout without an answer.
        self.assertIn(len(bodies) - 2 * len(commands), (0, 1), msg=log)
        for number, request, reply in zip(commands, bodies[::2], bodies[1::2]):
            self.seen.setdefault(number, []).append((request, reply))

    def tags(self, carried):
        return [self.names[item.type] + ("List" if item.is_list else "") for item in carried]

    def test_records(self):
        for kind, *arguments in RUNS:
            self.ask(kind, *arguments)
        for command in self.schema.commands:
            if command.carries and command.functions and command.request not in ASIDE:
                self.assertIn(command.request, self.seen)
                answers = ["Result", *self.tags(command.answers)]
                # A reply may hold more than the library takes from it.
                seen = [(request, reply[:len(answers)])
                        for request, reply in self.seen[command.request]]
                self.assertIn((self.tags(command.carries), answers), seen,
                              msg=str(command.request))


if __name__ == "__main__":
    run(Wire, ["fleetctl", "virtual-device"])
