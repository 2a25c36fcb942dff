"""The frame of every page of the documentation: reference, guides and library look alike."""

from html import escape

# What the head of a page leads to, from the root of the documentation.
PLACES = {"index.html": "FleetKit", "reference/index.html": "Records",
          "reference/commands.html": "Commands", "library/index.html": "C++"}
SEARCH = "Search records, fields, commands, functions, pages"


def page(title: str, body: str, root: str) -> str:
    """A page. `root` is the way from its directory to the root of the documentation."""
    places = "\n".join(f'<a href="{root}{place}">{name}</a>' for place, name in PLACES.items())
    return f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{escape(title)} - FleetKit</title>
<link rel="stylesheet" href="{root}site.css">
<script src="{root}reference/search-index.js" defer></script>
<script src="{root}search-index.js" defer></script>
<script src="{root}site.js" defer></script>
</head>
<body data-root="{root}">
<header>{places}
<div class="search"><input type="search" placeholder="{SEARCH}"
aria-label="{SEARCH}"><ol></ol></div></header>
<main>
{body}</main>
</body>
</html>
"""
