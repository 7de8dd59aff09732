# What Doxygen gets of a page instead of the page itself, each line at its place.

# A table of contents below the title, where a line is empty.
2s/^$/[TOC]/

# Doxygen takes a code span with an apostrophe for a quotation; between double marks it does not.
s/`([^`]*)`/\x01\1\x02/g
s/\x01([^\x02']*)\x02/`\1`/g
s/\x01([^\x02]*)\x02/``\1``/g
