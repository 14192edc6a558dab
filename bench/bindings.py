"""The Python side of bench/bindings.

bindings.py WHAT CALLS prints the nanoseconds of the processor that one call takes.
"""

import sys
import time
from xml.etree import ElementTree

import vexorapi
from vexorapi import _shapes, functions

DISKS = ('<HX_PD_GetHDInfo type="function"><requestType>1</requestType>'
         "<numRequested>128</numRequested></HX_PD_GetHDInfo>")

client = vexorapi.Client()
text = client.raw(DISKS)
shape = functions.FUNCTIONS["HX_PD_GetHDInfo"].result
works = {
    "etree": lambda: ElementTree.fromstring(text),
    "typed": lambda: _shapes.read("", shape, _shapes.parsed("", text)),
    "call": lambda: client.HX_PD_GetHDInfo(numRequested=128),
}
work = works[sys.argv[1]]
calls = int(sys.argv[2])
work()
start = time.process_time_ns()
for _ in range(calls):
    work()
print((time.process_time_ns() - start) / calls)
client.close()
