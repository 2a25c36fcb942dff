// What an XML text is checked for before the recursive parser is given it.
#pragma once

// Whether a text stays within 64 levels of nesting, 512 attributes in one element, 262,144 nodes
// (elements, attributes, comments and the like), and so many elements right below its root. One
// pass, which keeps its place in quotes, comments, CDATA, declarations and character references
// exactly as the parser does; where the parser would give up, or lose its place, the text is
// refused.
bool isWithinXmlBounds(const char* szText, int nMostBelowRoot) noexcept;

// Whether every byte above 127 belongs to a character in UTF-8. Reading another text as UTF-8, the
// parser would take a quote or the end of the text for the rest of a character.
bool isUtf8(const char* szText) noexcept;
