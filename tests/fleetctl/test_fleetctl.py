"""fleetctl against virtual devices, as programs over loopback.

usage: test_fleetctl.py FLEETCTL VIRTUAL-DEVICE [unittest arguments]
"""

import json
import os
import pty
import shlex
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

FLEETCTL, VIRTUAL_DEVICE = sys.argv[1:3]
REFUSALS = Path(__file__).with_name("refusals.txt")
PASSWORD = "s3cret-of-the-device"
CHANGED = "ñew"
# No run may print these: the passwords, and what they look like under the cipher.
SECRETS = (PASSWORD, "F6OdhHiNTnXA1mUcfxr13Rzx/fQ=", CHANGED, "pyGbgQ==")
OPTIONS = {  # what a name needs, or is asked with
    "stream": ["--channel", "1", "--stream", "1"],
    "streams": ["--channel", "1"],
    "channel": ["--channel", "2"],
    "osd-channel": ["--channel", "1"],
    "timezone-ability": ["--language", "1"],
    "timezone-default": ["--timezone", "2"],
}
RECORDER_ONLY = ("channel", "channels")
NETWORK = ["NetId=1", "WorkingType=1", "DHCP=false", "LocalIp=192.0.2.8",
           "LocalSubnetMask=255.255.255.0", "Gateway=192.0.2.1", "PrimaryDNSIp=192.0.2.1",
           "SpareDNSIp=192.0.2.2", "IPProtoVer=1"]


class Device:
    """A virtual device in a process of its own."""

    def __init__(self, *options):
        self.process = subprocess.Popen(
            [VIRTUAL_DEVICE, "--seconds", "110", *options], stdout=subprocess.PIPE, text=True,
            env=dict(os.environ, VIRTUAL_DEVICE_PASSWORD=PASSWORD))
        self.address = self.process.stdout.readline().removeprefix("listening on ").strip()

    def end(self, number=signal.SIGTERM):
        self.process.send_signal(number)
        self.process.stdout.close()
        assert self.process.wait() == 0


def fleetctl(*arguments, device=None, password=PASSWORD, environment=None, **options):
    variables = {name: text for name, text in os.environ.items() if "FLEETCTL" not in name}
    variables["FLEETCTL_USER"] = "admin"
    if device:
        variables["FLEETCTL_DEVICE"] = device.address
    if password is not None:
        variables["FLEETCTL_PASSWORD"] = password
    variables.update(environment or {})
    run = subprocess.run([FLEETCTL, *arguments], env=variables, stdin=subprocess.DEVNULL,
                         capture_output=True, timeout=60, **options)
    for secret in SECRETS:
        assert secret.encode() not in run.stdout + run.stderr, (arguments, secret)
    return run


def field_at(value, path):
    step, _, rest = path.partition(".")
    field = value[int(step) if step.isdigit() else step]
    return field_at(field, rest) if rest else field


def fields_at(value, paths):
    return {path: field_at(value, path) for path in paths}


class FleetctlTest(unittest.TestCase):
    def setUp(self):
        self.camera = self.start()

    def start(self, *options):
        device = Device(*options)
        self.addCleanup(device.end)
        return device

    def results(self, *arguments, status=0, device=None, **options):
        """The objects printed by a run, which has to end with that status."""
        run = fleetctl("-vv", *arguments, device=device or self.camera, **options)
        self.assertEqual(run.returncode, status, (arguments, run.stdout, run.stderr))
        return [json.loads(line) for line in run.stdout.decode().splitlines()]

    def value(self, name, *options, **more):
        result, = self.results("get", name, *options, *OPTIONS.get(name, []), **more)
        return result["value"]

    def test_reads_every_name(self):
        recorder = self.start("--kind", "nvr", "--channels", "2")
        names = [row["name"] for row in self.results("get", "--list") if row["get"]]
        self.assertEqual(len(names), 27)
        for name in names:
            device = recorder if name in RECORDER_ONLY else self.camera
            with self.subTest(name):
                result, = self.results("get", name, *OPTIONS.get(name, []), device=device)
                self.assertEqual((result["device"], result["name"], result["code"]),
                                 (device.address, name, 0))
                self.assertTrue(result["value"])
        for name in ("video", "audio", "osd-ability", "ptz", "motion", "blind"):
            with self.subTest(name, kind="recorder"):
                self.assertTrue(self.value(name, "--type", "nvr", "--channel", "2",
                                           device=recorder))

    def test_what_is_set_is_read_back(self):
        changes: dict[str, dict[str, object]] = {
            "time": {"Year": 2031, "Month": 2},
            "timezone": {"DSTOffset": 30},
            "ntp": {"NTPIp": "192.0.2.9", "NTPPort": 1123},
            "ports": {"RTSPPort": 5540},
            "protocol-security": {"UserVerificationFlag": False},
            "streams": {"0.BitRate": 777, "1.StreamName": "door"},
            "stream": {"BitRate": 888},
            "osd": {"0.OSDGlobalParam.OSDFontAlpha": 9, "0.CanvasProperList.0.AlignMode": 3},
            "osd-channel": {"CanvasProperList.0.OSDInfoList.0.Info": "Grüße a=b.c"},
        }
        settable = [row["name"] for row in self.results("get", "--list") if row["set"]]
        self.assertEqual(sorted(settable), sorted([*changes, "network"]))
        for name, fields in changes.items():
            with self.subTest(name):
                self.assertNotEqual(fields_at(self.value(name), fields), fields)
                texts = [f"{path}={value if isinstance(value, str) else json.dumps(value)}"
                         for path, value in fields.items()]
                written, = self.results("set", name, *texts, *OPTIONS.get(name, []))
                self.assertEqual(fields_at(written["value"], fields), fields)
                self.assertEqual(fields_at(self.value(name), fields), fields)
        self.assertEqual(self.results("set", "network", *NETWORK)[0]["code"], 0)
        self.assertEqual(self.value("summary")["DeviceIP"], "192.0.2.8")

    def test_a_time_zone_has_a_default_and_a_name_in_each_language(self):
        self.assertEqual(self.value("timezone-default")["TimeZone"], 2)
        languages = self.value("language")["LanguageTypeList"]
        zones = [self.results("get", "timezone-ability", "--language", str(language["LanguageID"]))
                 for language in languages]
        names = {zone["value"]["TimeZoneTypeList"][0]["TimeZoneName"] for zone, in zones}
        self.assertEqual(len(names), len(languages))
        self.assertGreater(len(names), 1)

    def test_assignments_reach_nested_fields_and_append_to_lists(self):
        def canvases(*fields):
            return self.results("set", "osd-channel", "--channel", "1", *fields)[0]["value"][
                "CanvasProperList"]

        self.assertEqual(canvases("CanvasProperList=[]"), [])
        first, second = canvases(
            "CanvasProperList.0.AlignMode=1", 'CanvasProperList.0={"AreaID":2}',
            'CanvasProperList.1.AreaParam={"TopX":9}')
        self.assertEqual((first["AlignMode"], first["AreaID"]), (1, 2))
        self.assertEqual((second["AlignMode"], second["AreaParam"]["TopX"]), (0, 9))
        self.assertEqual(canvases("CanvasProperList.0.AreaID=1", "CanvasProperList=[]"), [])

    def test_wrong_usage_gives_2_and_changes_nothing(self):
        before = self.results("get", "ntp", "ports")
        cases = [line.split(" | ") for line in REFUSALS.read_text().splitlines() if " | " in line]
        cases.append([f"set ntp ={60000 * '['}", "at most 64 levels"])
        for typed, words in cases:
            with self.subTest(typed):
                run = fleetctl(*shlex.split(typed), device=self.camera)
                self.assertEqual((run.returncode, run.stdout), (2, b""), run.stderr)
                self.assertIn(words, run.stderr.decode())
        without = fleetctl("get", "ntp", device=self.camera, password=None)
        self.assertEqual((without.returncode, without.stdout), (2, b""))
        self.assertIn(b"FLEETCTL_PASSWORD", without.stderr)
        self.assertEqual(fleetctl("get", "ntp").returncode, 2)
        self.assertEqual(self.results("get", "ntp", "ports"), before)

    def test_a_failed_login_gives_3(self):
        gone = Device()
        gone.end(signal.SIGINT)
        silent = self.start("--misbehave", "close:Login")
        for device, password, code, words in (
                (self.camera, "wrong", 2, "refused with its own code 2"),
                (gone, PASSWORD, -204, "connecting failed"),
                (silent, PASSWORD, -212, "closed the connection")):
            for arguments in (["get", "ntp"], ["set", "ntp", "NTPPort=1"],
                              ["do", "restart", "--yes"]):
                result, = self.results(*arguments, status=3, device=device, password=password)
                self.assertEqual((result["name"], result["code"]), ("login", code))
                self.assertIn(words, result["error"])
        result, = self.results("-d", "no..name:1", "get", "ntp", status=3)
        self.assertEqual((result["name"], result["code"]), ("login", -218))

    def test_a_failed_operation_gives_1_and_the_others_go_on(self):
        broken = self.start("--misbehave", "code=99:32712", "--misbehave", "close:30523")
        first, second, third = self.results("get", "time", "ntp", "ports", status=1,
                                            device=broken)
        self.assertEqual(first["code"], 0)
        self.assertEqual((second["code"], second["error"]),
                         (99, "the device refused with its own code 99"))
        self.assertEqual(third["code"], -212)
        self.assertIn("closed", third["error"])
        self.assertNotIn("value", third)
        refused, = self.results("set", "ntp", "NTPPort=1", status=1, device=broken)
        self.assertEqual(refused["code"], 99)
        refused, = self.results("set", "time", "Month=13", "Day=2", status=1)
        self.assertIn("its own code 7; sent: Month=13 Day=2", refused["error"])

    def test_the_library_never_prints_on_standard_output(self):
        odd = self.start("--misbehave", "not-xml:32712")
        run = fleetctl("-vv", "get", "time", "ntp", device=odd)
        self.assertEqual([json.loads(line)["code"] for line in run.stdout.splitlines()],
                         [0, -233])
        self.assertGreater(len(run.stderr.splitlines()), 2)

    def test_a_table_shows_fields_and_columns(self):
        text = fleetctl("-o", "table", "get", "ntp", "streams", "ports",
                        device=self.camera).stdout.decode()
        self.assertRegex(text, r"(?m)^  NTPPort +123$")
        self.assertRegex(text, r"(?m)^  ChannelId  StreamId  StreamName")
        failed = fleetctl("-o", "table", "get", "ntp", device=self.camera, password="wrong")
        self.assertEqual((failed.returncode, failed.stdout), (3, b""))
        self.assertIn(b"(code 2)", failed.stderr)

    def test_actions(self):
        for arguments in (["restart", "--yes"], ["reset", "--yes", "--hold", "1,2"],
                          ["exec", "uname -a"]):
            with self.subTest(arguments):
                result, = self.results("do", *arguments)
                self.assertEqual((result["name"], result["code"]), (arguments[0], 0))

    def test_a_changed_password_is_what_the_next_login_needs(self):
        with tempfile.NamedTemporaryFile("w") as file:
            file.write("from a file\nsecond line\n")
            file.flush()
            self.results("do", "passwd", "--yes", "--new-password-file", file.name)
            self.results("get", "time", status=3)
            self.results("get", "time", "--password-file", file.name, password=None)
        self.results("do", "passwd", "--yes", password="from a file",
                     environment={"FLEETCTL_NEW_PASSWORD": CHANGED})
        self.results("get", "time", password=CHANGED)

    def test_output_that_cannot_be_written_is_a_failure(self):
        with open("/dev/full", "wb") as full:
            run = subprocess.run([FLEETCTL, "get", "--list"], stdout=full, stderr=subprocess.PIPE,
                                 timeout=60)
        self.assertEqual(run.returncode, 1)
        self.assertIn(b"could not be written", run.stderr)

    def test_help_and_version_are_data(self):
        for arguments in (["--version"], ["help", "exit-codes"], ["vocabulary"]):
            run = fleetctl(*arguments)
            self.assertEqual((run.returncode, run.stderr), (0, b""), arguments)
            self.assertTrue(run.stdout)
        for verb in ("", "get", "set", "do"):
            run = fleetctl(*verb.split(), "--help")
            self.assertEqual((run.returncode, run.stderr), (0, b""), verb)
            self.assertEqual(run.stdout, fleetctl("help", *verb.split()).stdout)
            self.assertLessEqual(max(map(len, run.stdout.splitlines())), 80)
        self.assertIn(b"\n  stream --channel N --stream N ", fleetctl("help", "get").stdout)

    def test_vocabulary_prints_records_and_commands(self):
        def shown(name):
            return self.results("vocabulary", name, "-o", "json")[0]

        ntp = shown("206")
        for name in ("NTPParam", "NTPParamList", "ntp"):
            self.assertEqual(shown(name), ntp)
        self.assertEqual((ntp["record"], ntp["id"]), ("NTPParam", 206))
        self.assertEqual((ntp["carriedBy"], ntp["answers"]), (["32714"], ["32712"]))
        self.assertEqual(ntp["example"], '<NTPParam NTPEnableFlag="true" NTPIp="text" '
                         'NTPPort="1" NTPRunTime="1" IPProtoVer="1" />\n')
        self.assertTrue([place for place in shown("RGBColor")["nestedIn"]
                         if "OSDGlobalParam." in place])
        self.assertEqual(shown("EtPTZOperation")["fields"][0], {
            "name": "CameraId", "type": "int", "default": "1", "absent": "stays as it was",
            "printed": [r"getProperty get CameraId failed \n"]})
        command = shown("32712")
        self.assertEqual((command["command"], command["reply"]), (32712, 32713))
        self.assertEqual((command["carries"], command["answers"]),
                         (["ChannelId"], ["EtResult", "NTPParam"]))
        text = fleetctl("vocabulary", "EtPTZOperation", "-o", "table").stdout.decode()
        for part in ("carried by  14006", r"getProperty get CameraId failed \n",
                     '<PTZOperation CameraId="1" PTZId="1" PTZOperation="text" Name="text" />\n'):
            self.assertIn(part, text)
        table = fleetctl("vocabulary", "-o", "table").stdout
        self.assertEqual(len(table.splitlines()), len(self.results("vocabulary")))

    def on_terminal(self, answers, *arguments):
        """Runs with a terminal for standard input and error; answers each question in turn."""
        master, slave = pty.openpty()
        variables = dict(os.environ, FLEETCTL_USER="admin", FLEETCTL_DEVICE=self.camera.address)
        variables.pop("FLEETCTL_PASSWORD", None)
        with subprocess.Popen([FLEETCTL, *arguments], stdin=slave, stdout=subprocess.PIPE,
                              stderr=slave, env=variables, start_new_session=True) as process:
            os.close(slave)
            seen = b""
            for question, answer in answers:
                while question not in seen.rsplit(b"\n", 1)[-1]:
                    seen += os.read(master, 1024)
                os.write(master, answer + b"\n")
                seen += b"\n"
            output = process.stdout.read()
            status = process.wait(60)
        try:
            seen += os.read(master, 4096)
        except OSError:
            pass  # the terminal went with the process
        os.close(master)
        return status, output, seen

    def test_asks_at_the_terminal_without_echo(self):
        login = (b"Password of admin: ", PASSWORD.encode())
        status, output, seen = self.on_terminal([login], "get", "time")
        self.assertEqual(status, 0, seen)
        self.assertEqual(json.loads(output)["code"], 0)
        self.assertNotIn(PASSWORD.encode(), seen)
        status, output, seen = self.on_terminal([login, (b"[yes/no] ", b"no")], "do", "reset")
        self.assertEqual((status, output), (1, b""), seen)
        status, output, seen = self.on_terminal(
            [login, (b"New password: ", b"fresh"), (b"again: ", b"fresh"),
             (b"[yes/no] ", b"yes")], "do", "passwd")
        self.assertEqual(status, 0, seen)
        self.assertNotIn(b"fresh", seen)
        self.results("get", "time", password="fresh")


class VirtualDeviceTest(unittest.TestCase):
    def run_device(self, typed):
        return subprocess.run([VIRTUAL_DEVICE, "--seconds", "1", *typed.split()], text=True,
                              capture_output=True, timeout=60)

    def test_prints_a_port_a_device_and_ends_by_itself(self):
        self.assertRegex(self.run_device("--count 3").stdout,
                         r"\A(listening on 127\.0\.0\.1:\d+\n){3}\Z")
        self.assertIn("\ndeep-nesting ", self.run_device("--list-misbehaviours").stdout)

    def test_refuses_what_it_does_not_understand(self):
        device = Device()
        self.addCleanup(device.end)
        port = device.address.rpartition(":")[2]
        for typed, status, words in (
                ("--port 70000", 2, "70000"), ("--kind toaster", 2, "toaster"),
                ("--channels 0", 2, "1 to 1024"), ("--bind nowhere", 2, "nowhere"),
                ("--what", 2, "--what"),
                ("--misbehave sulk", 2, "there are: delay drop close"),
                ("--misbehave drop=1", 2, "drop takes no value"),
                ("--misbehave delay=x", 2, "from 0 to 600000, not 'x'"),
                ("--misbehave strays=1001", 2, "from 1 to 1000"),
                ("--misbehave drop:", 2, "number or the name"),
                ("--misbehave drop:0", 2, "no command '0'"),
                ("--misbehave drop:12345", 2, "no command '12345'"),
                ("--misbehave drop:Init", 2, "no command 'Init'"),
                ("--bind 192.0.2.1", 1, "192.0.2.1"),
                (f"--port {port}", 1, f" port {port} of 127.0.0.1 is in use\n")):
            with self.subTest(typed):
                run = self.run_device(typed)
                self.assertEqual((run.returncode, run.stdout), (status, ""))
                self.assertIn(words, run.stderr)


if __name__ == "__main__":
    unittest.main(argv=["test_fleetctl.py", *sys.argv[3:]])
