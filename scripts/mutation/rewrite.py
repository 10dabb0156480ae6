# SPDX-License-Identifier: LGPL-2.1-or-later
"""Writes a source in which every mutant can be selected at run time."""

CLOSE, OPEN, REPLACE = range(3)  # what comes first at one offset


def edits_of(sites):
    """(offset, kind, rank, end, text), in the order in which they are applied."""
    edits = []
    for rank, site in enumerate(sites):  # outer sites come before those that they hold
        edits.append((site.start, OPEN, rank, site.start, site.before.format(site.first)))
        edits.append((site.end, CLOSE, -rank, site.end, site.after.format(site.first)))
        if site.middle:
            start, end, text = site.middle
            edits.append((start, REPLACE, rank, end, text.format(site.first)))
    return sorted(edits)


def rewritten(source, dropped):
    parts = ['#include "scripts/mutation/Mutant.h"\n#line 1\n']
    done = 0
    for offset, _, _, end, text in edits_of(source.kept(dropped)):
        parts += [source.text[done:offset], text]
        done = max(done, end)
    parts.append(source.text[done:])
    return "".join(parts)
