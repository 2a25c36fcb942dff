"""A device takes and gives the bytes of docs/wire-format.md and of its picture."""

import re
import socket
from html import unescape

from harness import ROOT, Device, PageCase, run, snippets_of

DOCS = ROOT / "docs"


def message(head, body):
    """The bytes of a head, written in hexadecimal, and of a body as the page shows it."""
    return bytes.fromhex(head) + body.replace("?>\n", "?>\r\n", 1).encode()


def messages_of_page():
    blocks = [block for block in snippets_of(DOCS / "wire-format.md")
              if block.language in ("hex", "xml")]
    return [message(head.text, body.text) for head, body in zip(blocks[::2], blocks[1::2])]


def message_of_picture():
    picture = (DOCS / "pictures/command.svg").read_text(encoding="utf-8")
    head = " ".join(re.findall(r'class="code middle">(\w\w)<', picture))
    lines = re.findall(r'class="code"[^>]*>(.*?)</text>', picture)
    return message(head, unescape("\n".join(lines) + "\n").replace("    ", "\t"))


class WireFormat(PageCase):
    def ask(self, request):
        self.connection.sendall(request)
        answer = self.receive(24)
        return answer + self.receive(int.from_bytes(answer[16:20], "big"))

    def receive(self, length):
        data = b""
        while len(data) < length:
            piece = self.connection.recv(length - len(data))
            self.assertTrue(piece, msg=f"closed behind {data!r}")
            data += piece
        return data

    def test_the_conversation(self):
        login, welcome, get, value, keep_alive, acknowledgement = messages_of_page()
        with Device(self.arguments.virtual_device) as device, \
                socket.create_connection(("127.0.0.1", int(device.port)), 30) as self.connection:
            self.assertEqual(self.ask(login), welcome)
            self.assertEqual(self.ask(get), value)
            answer = self.ask(message_of_picture())
            self.assertEqual(answer[4:12], bytes.fromhex("00 02 00 00 00 00 27 10"))
            self.assertIn(b'<Result Code="0" />', answer)
            self.assertIn(b'NTPIp="192.0.2.1"', self.ask(get))
            self.assertEqual(self.ask(keep_alive), acknowledgement)


if __name__ == "__main__":
    run(WireFormat, ["virtual-device"])
