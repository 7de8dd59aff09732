# What Doxygen gets of a page instead of the page itself, each line at its place.

# A table of contents below the title, where a line is empty.
2s/^$/[TOC]/

# A link to a heading of the same page works on the hosts of repositories only; on the site its text remains.
s/\[([^]]*)\]\(#[^)]*\)/\1/g

# The code spans of a line, each between two marks.
s/`([^`]*)`/\x01\1\x02/g

# Some versions of Doxygen resolve entities in code spans, so that `&amp;` would become `&`.
:entity
s/\x01([^\x02&]*)&([a-z]+|#[0-9]+|#x[0-9A-F]+);([^\x02]*)\x02/<code>\1\&amp;\2;\3<\/code>/
t entity
s/<code>([^<]*)&amp;#/<code>\1\&amp;\\#/g

# It drops the sign in `%s`, except for a second one.
:percent
s/(\x01[^\x02%]*)%([A-Za-z][^\x02]*\x02)/\1\x03\2/
t percent
s/\x03/%%/g

# It takes a code span with an apostrophe for a quotation; between double backquotes it does not.
s/\x01([^\x02']*)\x02/`\1`/g
s/\x01([^\x02]*)\x02/``\1``/g
