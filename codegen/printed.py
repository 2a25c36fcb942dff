"""The lines that mappers print about what they miss: the words of the schema, or the standard ones.

What is in braces is filled in when a line is printed, all but {mapper}.
"""

import re


def node_name(tag):
    """The tag as the lines about missing lists spell it: PTZOpenList is PTZ_OPEN_LIST."""
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=.)(?=[A-Z][a-z])", "_", tag).upper()


def absent_words(record, field):
    """When the field is absent; empty if nothing is printed."""
    mapper = record.name + "Xml"
    if field.absent:
        return field.absent.replace("{mapper}", mapper)
    if field.kind in ("list", "values"):
        return f"getConfigNode NODE_{node_name(field.name)} failed\\n"
    if field.presence in ("logged", "required") and field.kind not in ("record", "element", "each"):
        return f"{mapper}::parseDomainXmlNode get {field.name} failed \\n"
    return ""


def bad_words(field):
    """When a list is absent, or its entries cannot be read."""
    if field.kind in ("list", "values"):
        return field.bad or f"parseDomainXmlNode obj{field.name} failed\\n"
    return ""
