"""Results that are no XML because of what stands in them.

Names, models, serial numbers and events are data from outside, and the library writes their bytes
as they are.
"""

from __future__ import annotations

import re

# An element that holds a text, up to its closing tag. Behind that comes the next tag and nothing
# else, so that a text with a closing tag of its own is not ended by it.
_TEXT = re.compile(
    rb'(<(?P<name>\w+) type="string">)'
    rb"(?:<!\[CDATA\[(?P<cdata>.*?)\]\]>|(?P<plain>.*?))"
    rb"(</(?P=name)>)(?=\s*(?:<|\Z))", re.DOTALL)

_FORBIDDEN = re.compile("[\x00-\x08\x0b\x0c\x0e-\x1f\ufffe\uffff]")
_REFERENCE = re.compile(r"&(?!(?:amp|lt|gt|quot|apos);)")


def _characters(raw: bytes) -> str:
    return _FORBIDDEN.sub("\ufffd", raw.decode("utf-8", "replace"))


def _escaped(found: re.Match[bytes]) -> bytes:
    if found["cdata"] is not None:
        content = _characters(found["cdata"]).replace("&", "&amp;")
    else:
        # A reference may be the library's own writing.
        content = _REFERENCE.sub("&amp;", _characters(found["plain"]))
    content = content.replace("<", "&lt;").replace(">", "&gt;")
    return found[1] + content.encode() + found[5]


def repaired(result: bytes) -> bytes:
    """The result with its texts written so that XML carries them.

    A byte that XML forbids becomes U+FFFD, which marks it; all other characters stay. A result that
    was cut is not well-formed afterwards either.
    """
    return _TEXT.sub(_escaped, result)
