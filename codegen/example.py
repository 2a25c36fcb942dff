"""Writes an example element of a record as the library would write it, with every field filled."""

import base64
import re
from html import escape

VALUES = {"bool": "true", "int": "1", "u16": "1", "float": "1.5", "double": "1.5", "string": "text"}
BLOCK = bytes((1, 2, 3))


def scalar_text(kind, text):
    return f"{float(text):.6f}" if kind in ("float", "double") else text


class Node:
    """An element on its way to text."""

    def __init__(self, tag):
        self.tag, self.attributes, self.children = tag, {}, []

    def child(self, tag):
        self.children.append(Node(tag))
        return self.children[-1]

    def text(self, depth=0):
        indent = "\t" * depth
        head = indent + "<" + self.tag + "".join(
            f' {name}="{escape(value)}"' for name, value in self.attributes.items())
        if not self.children:
            return head + " />\n"
        return (head + ">\n" + "".join(child.text(depth + 1) for child in self.children)
                + f"{indent}</{self.tag}>\n")


def fill(schema, record, node):
    if record.base:
        fill(schema, schema.records[record.base], node)
    for field in record.fields:
        if "read-only" not in field.flags:
            fill_field(schema, field, node)


def fill_field(schema, field, node):
    target = schema.records.get(field.type)
    if field.kind in ("record", "element"):
        fill(schema, target, node.child(field.name))
    elif field.kind == "list":
        fill(schema, target, node.child(field.name).child(entry_tag(target)))
    elif field.kind == "each":
        parent = node.child(field.item) if field.item else node
        fill(schema, target, parent.child(field.name))
    elif field.kind == "values":
        parent = node if "bare" in field.flags else node.child(field.name)
        parent.child(field.item).attributes[field.item] = VALUES[field.type]
    elif field.kind == "joined":
        numbers = iter(range(1, 9))
        piece = re.compile("%d")
        node.attributes[field.name] = field.separator.join(
            piece.sub(lambda _: str(next(numbers)), field.pattern) for _ in range(2))
    elif field.kind == "block":
        node.attributes[field.length] = str(len(BLOCK))
        node.attributes[field.name] = base64.b64encode(BLOCK).decode()
    else:
        node.attributes[field.name] = scalar_text(field.kind, field.default or VALUES[field.kind])


def entry_tag(record):
    """The tag of an entry in a list of the record."""
    return record.entry or record.name


def example_of(schema, record, tag):
    node = Node(tag)
    fill(schema, record, node)
    return node.text()
