"""Writes the documentation as pages for a browser: the Markdown pages, the library's classes from
their headers, and one search over these and the reference.

    render.py OUT

Run from the root of the project. The reference stands in OUT/reference already.
"""

import json
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from html import escape, unescape
from pathlib import Path

import markdown

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "codegen"))

from page import page

HERE = Path(__file__).resolve().parent
START = ROOT / "README.md"
CONTENT = "CONTENT"
# Name, what it is, where it stands, further words.
Entry = tuple[str, str, str, str]


def documents() -> dict[Path, str]:
    """The Markdown pages, with the names that they have here."""
    beside = {path: path.stem.lower() + ".html" for path in ROOT.glob("*.md")}
    below = {path: path.stem + ".html" for path in (ROOT / "docs").glob("*.md")}
    return {**beside, **below, START: "index.html"}


def with_links(html: str, document: Path, names: dict[Path, str]) -> str:
    """Links from page to page lead to the pages as they are here."""
    def replace(match: re.Match[str]) -> str:
        path, hash_sign, heading = match[1].partition("#")
        name = names.get((document.parent / path).resolve()) if path else None
        return f'href="{name}{hash_sign}{heading}"' if name else match[0]
    return re.sub(r'href="([^":]*)"', replace, html)


def write_guides(out: Path) -> list[Entry]:
    names = documents()
    entries = []
    for document, name in names.items():
        html = markdown.markdown(document.read_text(encoding="utf-8"),
                                 extensions=["tables", "fenced_code", "toc", "sane_lists"])
        html = html.replace("<table>", '<div class="scroll"><table>')
        html = html.replace("</table>", "</table></div>")
        headings = [(anchor, unescape(re.sub("<.*?>", "", text))) for anchor, text
                    in re.findall(r'<h[123] id="([^"]*)">(.*?)</h', html)]
        title = headings[0][1]
        body = f'<div class="guide">\n{with_links(html, document, names)}\n</div>\n'
        (out / name).write_text(page(title, body, ""), encoding="utf-8")
        entries += [(text, "page" if text == title else f"page: {title}", f"{name}#{anchor}", "")
                    for anchor, text in headings]
    shutil.copytree(ROOT / "docs/pictures", out / "pictures")
    return entries


def run_doxygen(out: Path) -> ElementTree.Element:
    """Writes the library's pages into our frame; gives the list of what they have."""
    # Doxygen puts these in: the title of each page, and its way to the library's first page.
    header, footer = page("$title", CONTENT, "$relpath^../").split(CONTENT)
    (out / "header.html").write_text(header, encoding="utf-8")
    (out / "footer.html").write_text(footer, encoding="utf-8")
    subprocess.run(["doxygen", HERE / "Doxyfile"], cwd=ROOT, check=True)
    return ElementTree.parse(out / "library.tag").getroot()


def text_of(element: ElementTree.Element, tag: str) -> str:
    return element.findtext(tag) or ""


def place_of(element: ElementTree.Element) -> str:
    if element.tag == "compound":
        return "library/" + text_of(element, "filename")
    return f"library/{text_of(element, 'anchorfile')}#{text_of(element, 'anchor')}"


def compounds(tags: ElementTree.Element, *kinds: str) -> list[ElementTree.Element]:
    return [one for one in tags.findall("compound") if one.get("kind") in kinds]


def library_entries(tags: ElementTree.Element) -> list[Entry]:
    """Classes, and the functions that stand in FleetKit or in none."""
    entries = [(text_of(one, "name"), one.get("kind", ""), place_of(one), "")
               for one in compounds(tags, "class", "struct")]
    for one in compounds(tags, "class", "namespace"):
        if text_of(one, "name") in ("FleetKit", "fleetkit"):
            entries += [(text_of(member, "name"), f"function of {text_of(one, 'name')}",
                         place_of(member), text_of(member, "arglist"))
                        for member in one.findall("member[@kind='function']")]
    return list(dict.fromkeys(entries))


def link_list(elements: list[ElementTree.Element]) -> str:
    items = "".join(f'<li><a href="{place_of(one).removeprefix("library/")}">'
                    f"{escape(text_of(one, 'name'))}</a></li>\n" for one in elements)
    return f'<ul class="contents">\n{items}</ul>\n'


def is_record(element: ElementTree.Element) -> bool:
    names = [text_of(member, "name") for member in element.findall("member")]
    return element.find("base") is not None and "descriptor" in names


def library_start(tags: ElementTree.Element) -> str:
    classes = compounds(tags, "class", "struct")
    records = [one for one in classes if is_record(one)]
    others = [one for one in classes if not is_record(one)]
    headers_of_records = {text_of(one, "name") + ".h" for one in records}
    headers = [one for one in compounds(tags, "file")
               if text_of(one, "name") not in headers_of_records]
    return f"""<h1>The library</h1>
<p class="lead">What <code>libFleetKit</code> exports, from its headers.
<a href="classFleetKit.html">FleetKit</a> is the class that does everything with a device.</p>
<h2>Namespaces</h2>
{link_list(compounds(tags, "namespace"))}<h2>Classes and structures</h2>
{link_list(others)}<h2>Records</h2>
{link_list(records)}<h2>Headers</h2>
<p>Each record has a header of its name, in <code>fleetkit/domain</code>. The others:</p>
{link_list(headers)}"""


def check_links(out: Path) -> list[str]:
    """The links that lead nowhere."""
    texts = {path.resolve(): path.read_text(encoding="utf-8") for path in out.rglob("*.html")}
    anchors = {path: set(re.findall(r'\b(?:id|name)="([^"]*)"', text))
               for path, text in texts.items()}
    problems = []
    for source, text in texts.items():
        for target in re.findall(r'\b(?:href|src)="([^":]*)"', text):
            name, _, anchor = unescape(target).partition("#")
            path = (source.parent / name).resolve() if name else source
            if not path.exists() or (anchor and anchor not in anchors.get(path, ())):
                problems.append(f"{source.relative_to(out.resolve())}: {target}")
    return problems


def main() -> int:
    out = Path(sys.argv[1])
    entries = write_guides(out)
    tags = run_doxygen(out)
    entries += library_entries(tags)
    (out / "library/index.html").write_text(page("The library", library_start(tags), "../"),
                                            encoding="utf-8")
    lines = ",\n".join(json.dumps(entry, ensure_ascii=False) for entry in entries)
    (out / "search-index.js").write_text(f"const siteIndex = [\n{lines}\n];\n", encoding="utf-8")
    for name in ("site.css", "site.js"):
        shutil.copyfile(HERE / name, out / name)
    for name in ("header.html", "footer.html", "library.tag"):
        (out / name).unlink()
    problems = check_links(out)
    for problem in problems:
        print(f"leads nowhere: {problem}", file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
