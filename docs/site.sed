# What Doxygen gets of a page instead of the page itself, each line at its place.

# A table of contents below the title, where a line is empty.
2s/^$/[TOC]/

# The code spans of a line, each between two marks.
s/`([^`]*)`/\x01\1\x02/g

# Doxygen resolves entities in code spans, so that `&amp;` would become `&`.
:entity
s/(\x01[^\x02&]*)&([^\x02]*\x02)/\1\x03\2/
t entity
s/\x03/\&amp;/g

# It takes a code span with an apostrophe for a quotation; between double backquotes it does not.
s/\x01([^\x02']*)\x02/`\1`/g
s/\x01([^\x02]*)\x02/``\1``/g
