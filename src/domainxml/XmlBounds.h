// The bounds of an XML text that the recursive parser is given.
#pragma once

// Whether a text stays within 1,000 levels of nesting and 512 attributes in one element. One pass,
// which reads quotes, comments and CDATA as the parser does; whether the text is well formed is
// left to the parser.
bool isWithinXmlBounds(const char* szText) noexcept;
